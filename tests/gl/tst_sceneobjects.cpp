// Scene objects drawn on a real GL context (an offscreen surface and a framebuffer object), the
// viewer camera's maths, the mesh filler and the camera mesh tables.
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>
#include <QtTest>
#include <cmath>
#include <memory>

#include "CameraGL.h"
#include "Oryx3D.h"
#include "SceneChecks.h"
#include "Shaders.h"
#include "Simple3DObject.h"
#include "WidgetTestMain.h"

namespace {

constexpr int kSize = 64;

}  // namespace

class TstSceneObjects : public QObject {
    Q_OBJECT

    QOffscreenSurface surface;
    QOpenGLContext context;
    std::unique_ptr<QOpenGLFramebufferObject> fbo;
    std::unique_ptr<QOpenGLShaderProgram> program;

    // Clears the target to black and sets the scene program with an identity matrix.
    void begin() {
        fbo->bind();
        auto* f = context.functions();
        f->glViewport(0, 0, kSize, kSize);
        f->glClearColor(0, 0, 0, 1);
        f->glClear(GL_COLOR_BUFFER_BIT);
        program->bind();
        program->setUniformValue("u_mvpMatrix", QMatrix4x4());
    }

    // The frame as RGB, top row first. The scene program writes alpha 0.5; the raw colour
    // values are read back and the alpha is ignored.
    QImage finish() {
        program->release();
        QImage raw(kSize, kSize, QImage::Format_RGBX8888);
        context.functions()->glReadPixels(0, 0, kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE,
                                          raw.bits());
        fbo->release();
        for (int y = 0; y < kSize; ++y) {
            uchar* row = raw.scanLine(y);
            for (int x = 0; x < kSize; ++x) {
                row[4 * x + 3] = 255;
            }
        }
        return raw.mirrored();
    }

private slots:
    void initTestCase() {
        surface.create();
        QVERIFY(context.create());
        QVERIFY(context.makeCurrent(&surface));
        fbo = std::make_unique<QOpenGLFramebufferObject>(kSize, kSize);
        program = std::make_unique<QOpenGLShaderProgram>();
        QVERIFY(program->addShaderFromSourceCode(QOpenGLShader::Vertex, VERTEX_SHADER));
        QVERIFY(program->addShaderFromSourceCode(QOpenGLShader::Fragment, FRAGMENT_SHADER));
        QVERIFY(program->link());
    }

    void cleanupTestCase() {
        program.reset();
        fbo.reset();
        context.doneCurrent();
    }

    // ---- Simple3DObject ----------------------------------------------------------------------

    void geometryAndIndexNumbering() {
        Simple3DObject obj(bw::Translation(0, 0, 0), false);
        obj.addLine({0, 0, 0}, {1, 2, 3}, {0.5f, 0.25f, 1});
        obj.addPoint(4, 5, 6, 0.1f, 0.2f, 0.3f);
        QCOMPARE(obj.getIndices(), (std::vector<std::uint32_t>{0, 1, 2}));
        QCOMPARE(obj.getVertices(), (std::vector<float>{0, 0, 0, 1, 2, 3, 4, 5, 6}));
        QCOMPARE(obj.getColors(),
                 (std::vector<float>{0.5f, 0.25f, 1, 0.5f, 0.25f, 1, 0.1f, 0.2f, 0.3f}));
        QCOMPARE(obj.getDrawingType(), 4u);
        obj.clear();
        QVERIFY(obj.getVertices().empty() && obj.getColors().empty() && obj.getIndices().empty());
        obj.addPoint(1, 1, 1, 1, 1, 1);
        QCOMPARE(obj.getIndices(), (std::vector<std::uint32_t>{0}));
    }

    void drawsOnlyAfterUpload() {
        Simple3DObject tri(bw::Translation(0, 0, 0), false);
        tri.addPoint(-1, -1, 0, 0, 1, 0);
        tri.addPoint(1, -1, 0, 0, 1, 0);
        tri.addPoint(0, 1, 0, 0, 1, 0);

        begin();
        tri.draw();  // not uploaded yet
        QCOMPARE(countNear(finish(), Qt::green), 0);
        QVERIFY(!tri.isReady());

        QVERIFY(tri.pushToGPU());
        QVERIFY(tri.isReady());
        begin();
        tri.draw();
        const QImage drawn = finish();
        QCOMPARE(drawn.pixelColor(kSize / 2, kSize / 2), QColor(Qt::green));

        tri.clear();  // keeps the GL objects, draws nothing
        QVERIFY(!tri.isReady());
        begin();
        tri.draw();
        QCOMPARE(countNear(finish(), Qt::green), 0);
        QCOMPARE(int(context.functions()->glGetError()), int(GL_NO_ERROR));
    }

    void reuploadReplacesGeometry() {
        Simple3DObject obj(bw::Translation(0, 0, 0), false);
        obj.addPoint(-1, -1, 0, 1, 0, 0);
        obj.addPoint(1, -1, 0, 1, 0, 0);
        obj.addPoint(0, 1, 0, 1, 0, 0);
        obj.pushToGPU();
        obj.clear();
        obj.addPoint(-1, -1, 0, 0, 0, 1);
        obj.addPoint(1, -1, 0, 0, 0, 1);
        obj.addPoint(1, 1, 0, 0, 0, 1);
        obj.addPoint(-1, -1, 0, 0, 0, 1);
        obj.addPoint(1, 1, 0, 0, 0, 1);
        obj.addPoint(-1, 1, 0, 0, 0, 1);
        obj.pushToGPU();
        begin();
        obj.draw();
        const QImage img = finish();
        QCOMPARE(countNear(img, Qt::blue), kSize * kSize);  // the full-screen quad, all blue
    }

    void emptyObjectUploadsAndDrawsNothing() {
        Simple3DObject obj(bw::Translation(0, 0, 0), false);
        QVERIFY(obj.pushToGPU());
        QVERIFY(obj.isReady());
        begin();
        obj.draw();
        QCOMPARE(countNear(finish(), Qt::black), kSize * kSize);
        QCOMPARE(int(context.functions()->glGetError()), int(GL_NO_ERROR));
    }

    void linesDrawingType() {
        Simple3DObject obj(bw::Translation(0, 0, 0), false);
        obj.setDrawingType(1);
        obj.addLine({-1, 0, 0}, {1, 0, 0}, {1, 1, 0});
        obj.pushToGPU();
        begin();
        obj.draw();
        const QImage img = finish();
        const int yellow = countNear(img, Qt::yellow);
        QVERIFY2(yellow >= kSize - 2 && yellow <= 2 * kSize, qPrintable(QString::number(yellow)));
    }

    void modelMatrixIsRotationThenTranslation() {
        Simple3DObject obj(bw::Translation(1, 2, 3), false);
        const bw::Orientation quarter(bw::Rotation(float(M_PI / 2), bw::Translation(0, 0, 1)));
        obj.rotate(quarter);
        obj.translate(bw::Translation(1, 0, 0));
        const bw::Transform m = obj.getModelMatrix();
        // (1, 0, 0) turns onto (0, 1, 0), then moves by (2, 2, 3).
        QVERIFY(near(m(0, 0), 0) && near(m(1, 0), 1) && near(m(2, 0), 0));
        QVERIFY(sameVec(m.getTranslation(), bw::Translation(2, 2, 3)));
        QCOMPARE(m(3, 3), 1.f);
        // rotate() applies the new rotation on the left.
        const bw::Orientation half(bw::Rotation(float(M_PI), bw::Translation(1, 0, 0)));
        obj.setRotation(quarter);
        obj.rotate(half);
        const bw::Orientation expected = half * quarter;
        QVERIFY(near(obj.getRotation().x, expected.x) && near(obj.getRotation().w, expected.w) &&
                near(obj.getRotation().y, expected.y) && near(obj.getRotation().z, expected.z));
        obj.setRT(bw::Transform(quarter, bw::Translation(7, 8, 9)));
        QVERIFY(sameVec(obj.getPosition(), bw::Translation(7, 8, 9)));
    }

    // ---- DynAxis -----------------------------------------------------------------------------

    void dynAxisPointsAgainstTheVector() {
        DynAxis dyn;
        begin();
        dyn.draw(1.f, 0.f, 0.f);
        const QImage img = finish();
        QCOMPARE(dyn.getDrawingType(), 1u);
        QCOMPARE(dyn.getIndices().size(), std::size_t(6));
        // x segment ends at (-0.15, 0, 0): left of the centre, in RGB 200, 70, 70.
        QCOMPARE(dyn.getVertices()[3], -0.15f);
        const QColor red(200, 70, 70);
        const int left = kSize / 2 - 3;
        QVERIFY(countNear(img.copy(0, 0, kSize / 2 - 1, kSize), red) > 0);
        QCOMPARE(countNear(img.copy(kSize / 2 + 2, 0, kSize / 2 - 2, kSize), red), 0);
        QCOMPARE(img.pixelColor(left, kSize / 2).red(), 200);

        // Drawn again with another vector: the triad is rebuilt.
        dyn.draw(0.f, 0.f, 1.f);
        QCOMPARE(dyn.getVertices()[3], 0.f);
        QCOMPARE(dyn.getVertices()[17], -0.15f);
        // The same vector twice still rebuilds (nothing is remembered).
        dyn.draw(0.f, 0.f, 1.f);
        QCOMPARE(dyn.getVertices().size(), std::size_t(18));
    }

    // ---- fillORYX ----------------------------------------------------------------------------

    void fillOryxCountsAndNumbering() {
        float verts[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
        int tris[] = {1, 3, 2, 3, 3, 3};
        Simple3DObject obj(bw::Translation(0, 0, 0), false);
        fillORYX(0, verts, tris, {1, 0, 0}, &obj);
        QVERIFY(obj.getVertices().empty());
        fillORYX(1, verts, tris, {0.25f, 0.5f, 0.75f}, &obj);
        QCOMPARE(obj.getVertices(), (std::vector<float>{1, 2, 3, 7, 8, 9, 4, 5, 6}));
        QCOMPARE(obj.getColors()[0], 0.25f);
        QCOMPARE(obj.getColors()[8], 0.75f);
        fillORYX(2, verts, tris, {1, 1, 1}, &obj);
        QCOMPARE(obj.getIndices().size(), std::size_t(9));
        QCOMPARE(obj.getVertices()[9 + 0], 1.f);
        QCOMPARE(obj.getVertices()[18 + 3 * 2], 7.f);
    }

    // ---- CameraGL ----------------------------------------------------------------------------

    void projectionEntries() {
        CameraGL cam(bw::Translation(0, 0, 0), bw::Translation(0, 0, -1), bw::Translation(0, 1, 0));
        cam.setProjection(90, 90, 0.05f, 300);
        const bw::Transform& p = cam.getProjection();
        QVERIFY(near(p(0, 0), 1.f, 1e-6f));
        QVERIFY(near(p(1, 1), 1.f, 1e-6f));
        QVERIFY(near(p(2, 2), -300.f / 299.95f, 1e-6f));
        QVERIFY(near(p(2, 3), -15.f / 299.95f, 1e-7f));
        QCOMPARE(p(3, 2), -1.f);
        QCOMPARE(p(3, 3), 0.f);
        QCOMPARE(p(0, 1), 0.f);
        QCOMPARE(cam.getHorizontalFOV(), 90.f);
        QCOMPARE(cam.getZFar(), 300.f);
        cam.setProjection(60, 40, 1, 10);
        QVERIFY(near(cam.getProjection()(0, 0), float(1 / std::tan(M_PI / 6))));
        QVERIFY(near(cam.getProjection()(1, 1), float(1 / std::tan(M_PI / 9))));
    }

    void directionCases() {
        CameraGL cam(bw::Translation(0, 0, 0), bw::Translation(0, 0, -1), bw::Translation(0, 1, 0));
        const bw::Orientation q = cam.getOrientation();
        QVERIFY(near(q.x, 0) && near(q.y, 0) && near(q.z, 0) && near(std::fabs(q.w), 1));
        QVERIFY(sameVec(cam.getForward(), bw::Translation(0, 0, 1)));
        QVERIFY(sameVec(cam.getUp(), bw::Translation(0, 1, 0)));
        QVERIFY(sameVec(cam.getRight(), bw::Translation(-1, 0, 0)));

        cam.setDirection(bw::Translation(0, 0, -1), bw::Translation(0, -1, 0));
        QVERIFY(sameVec(cam.getUp(), bw::Translation(0, -1, 0)));
        QVERIFY(sameVec(cam.getForward(), bw::Translation(0, 0, 1)));
        QVERIFY(bw::Translation::dot(cam.getVertical(), cam.getUp()) > 0);

        // Looking along +x: forward is the opposite of the direction.
        cam.setDirection(bw::Translation(2, 0, 0), bw::Translation(0, 1, 0));
        QVERIFY(sameVec(cam.getForward(), bw::Translation(-1, 0, 0)));
        QVERIFY(bw::Translation::dot(cam.getUp(), bw::Translation(0, 1, 0)) > 0.99f);
    }

    void viewPutsTheEyeAtTheOrigin() {
        CameraGL cam(bw::Translation(1, 2, 3), bw::Translation(0, 0, -1), bw::Translation(0, 1, 0));
        cam.setOffsetFromPosition(bw::Translation(0, 0, 1));
        cam.setRotation(bw::Orientation(bw::Rotation(0.4f, bw::Translation(0, 1, 0))));
        cam.setProjection(90, 90, 0.05f, 300);
        cam.update();
        const bw::Translation eye =
            cam.getPosition() + cam.getOffsetFromPosition() * cam.getOrientation();
        const bw::Transform& v = cam.getView();
        for (int r = 0; r < 3; ++r) {
            const float e = v(r, 0) * eye.x + v(r, 1) * eye.y + v(r, 2) * eye.z + v(r, 3);
            QVERIFY(near(e, 0.f));
        }
        const bw::Transform vp = cam.getViewProjectionMatrix();
        const bw::Matrix4f expected = cam.getProjection() * cam.getView();
        for (int i = 0; i < 16; ++i) {
            QVERIFY(near(vp.m[i], expected.m[i]));
        }
        // A point in front of the eye (against forward) lands in the middle of the picture.
        const bw::Translation ahead = eye + cam.getForward() * -5.f;
        float clip[4];
        for (int r = 0; r < 4; ++r) {
            clip[r] = vp(r, 0) * ahead.x + vp(r, 1) * ahead.y + vp(r, 2) * ahead.z + vp(r, 3);
        }
        QVERIFY(near(clip[0] / clip[3], 0.f) && near(clip[1] / clip[3], 0.f));
        QVERIFY(clip[3] > 0);
    }

    void updateKeepsVerticalOnTheUpSide() {
        CameraGL cam(bw::Translation(0, 0, 0), bw::Translation(0, 0, -1), bw::Translation(0, 1, 0));
        cam.rotate(bw::Rotation(float(M_PI), bw::Translation(0, 0, 1)));  // upside down
        QVERIFY(bw::Translation::dot(cam.getVertical(), cam.getUp()) < 0);
        cam.update();
        QVERIFY(sameVec(cam.getVertical(), bw::Translation(0, -1, 0)));
        cam.translate(bw::Translation(1, 0, 0));
        QVERIFY(sameVec(cam.getPosition(), bw::Translation(1, 0, 0)));
    }

    // ---- Mesh tables -------------------------------------------------------------------------

    void meshCountsColoursAndFirstRows() {
        QCOMPARE(sizeof(ORYX_obj::vertices) / sizeof(float), std::size_t(56 * 3));
        QCOMPARE(sizeof(ORYX_obj::alluminiumTriangles) / sizeof(int), std::size_t(54 * 3));
        QCOMPARE(sizeof(ORYX_obj::darkTriangles) / sizeof(int), std::size_t(54 * 3));
        QCOMPARE(sizeof(ORYX_C_obj::vertices) / sizeof(float), std::size_t(56 * 3));
        QCOMPARE(sizeof(ORYX_B_obj::vertices) / sizeof(float), std::size_t(1015 * 3));
        const std::size_t b[] = {
            sizeof(ORYX_B_obj::alluminiumTriangles),  sizeof(ORYX_B_obj::alluminiumTriangles2),
            sizeof(ORYX_B_obj::alluminiumTriangles3), sizeof(ORYX_B_obj::darkTriangles),
            sizeof(ORYX_B_obj::darkTriangles2),       sizeof(ORYX_B_obj::greyTriangles),
            sizeof(ORYX_B_obj::greyTriangles2),       sizeof(ORYX_B_obj::yellowTriangles)};
        const std::size_t want[] = {35, 52, 38, 1142, 126, 20, 20, 80};
        for (int i = 0; i < 8; ++i) {
            QCOMPARE(b[i] / sizeof(int) / 3, want[i]);
        }

        QCOMPARE(ORYX_obj::ALLUMINIUM_COLOR, bw::Vector3<float>(0.64f, 0.64f, 0.64f));
        QCOMPARE(ORYX_obj::DARK_COLOR, bw::Vector3<float>(0, 0, 0));
        QCOMPARE(ORYX_C_obj::ALLUMINIUM_COLOR, bw::Vector3<float>(0.2f, 0.2f, 0.2f));
        QCOMPARE(ORYX_B_obj::ALLUMINIUM_COLOR, bw::Vector3<float>(0.79f, 0.82f, 0.93f));
        QCOMPARE(ORYX_B_obj::LENS_COLOR, bw::Vector3<float>(0.22f, 0.22f, 0.22f));
        QCOMPARE(ORYX_B_obj::YELLOW_COLOR, bw::Vector3<float>(1, 1, 0));
        QCOMPARE(ORYX_B_obj::DARK_COLOR, bw::Vector3<float>(0, 0, 0));

        const float first[] = {-0.008456f, -0.016299f, 0.016299f,  -0.008456f,
                               0.016299f,  0.016299f,  -0.008456f, 0.016299f,
                               -0.016299f, -0.008456f, -0.016299f, -0.016299f};
        for (int i = 0; i < 12; ++i) {
            QCOMPARE(ORYX_obj::vertices[i], first[i]);
        }
        const int alu[] = {1, 10, 4, 6, 14, 13, 7, 13, 12};
        const int dark[] = {23, 3, 22, 13, 10, 11, 4, 14, 3};
        for (int i = 0; i < 9; ++i) {
            QCOMPARE(ORYX_obj::alluminiumTriangles[i], alu[i]);
            QCOMPARE(ORYX_obj::darkTriangles[i], dark[i]);
        }
        const float bFirst[] = {0.0308f, 0.0133f, 0.000001f, 0.058785f, 0.0133f, -0.00225f};
        for (int i = 0; i < 6; ++i) {
            QCOMPARE(ORYX_B_obj::vertices[i], bFirst[i]);
        }
        // ORYX and ORYX_C share the body.
        for (int i = 0; i < 56 * 3; ++i) {
            QCOMPARE(ORYX_obj::vertices[i], ORYX_C_obj::vertices[i]);
        }
    }

    void meshBoundsAndIndexRange_data() {
        QTest::addColumn<int>("which");
        QTest::newRow("ORYX") << 0;
        QTest::newRow("ORYX_B") << 1;
    }

    void meshBoundsAndIndexRange() {
        QFETCH(int, which);
        const float* v = which == 0 ? ORYX_obj::vertices : ORYX_B_obj::vertices;
        const int n = which == 0 ? 56 : 1015;
        const float lo[2][3] = {{-0.024755f, -0.016299f, -0.016299f},
                                {-0.031847f, -0.013333f, -0.022997f}};
        const float hi[2][3] = {{0.144755f, 0.016299f, 0.016299f}, {0.093353f, 0.0133f, 0.0065f}};
        for (int a = 0; a < 3; ++a) {
            float mn = 1e9f, mx = -1e9f;
            for (int i = 0; i < n; ++i) {
                mn = std::min(mn, v[3 * i + a]);
                mx = std::max(mx, v[3 * i + a]);
            }
            QVERIFY2(near(mn, lo[which][a], 2e-6f), qPrintable(QString::number(mn, 'g', 9)));
            QVERIFY2(near(mx, hi[which][a], 2e-6f), qPrintable(QString::number(mx, 'g', 9)));
        }
        // Every triangle refers to existing vertices and every vertex is used.
        std::vector<int> used(n + 1, 0);
        auto check = [&](const int* t, std::size_t count) {
            for (std::size_t i = 0; i < count; ++i) {
                QVERIFY(t[i] >= 1 && t[i] <= n);
                used[t[i]] = 1;
            }
        };
        if (which == 0) {
            check(ORYX_obj::alluminiumTriangles, 162);
            check(ORYX_obj::darkTriangles, 162);
        } else {
            using namespace ORYX_B_obj;
            check(alluminiumTriangles, 105);
            check(alluminiumTriangles2, 156);
            check(alluminiumTriangles3, 114);
            check(darkTriangles, 3426);
            check(darkTriangles2, 378);
            check(greyTriangles, 60);
            check(greyTriangles2, 60);
            check(yellowTriangles, 240);
        }
        QCOMPARE(std::count(used.begin() + 1, used.end(), 1), n);
    }
};

WIDGET_TEST_MAIN(TstSceneObjects)
#include "tst_sceneobjects.moc"
