// Scene objects drawn on a real GL context (an offscreen surface and a framebuffer object), the
// viewer camera's maths and the mesh filler.
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

constexpr int kSize = 64;

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
    // values are read back and the alpha byte is ignored (RGBX).
    QImage finish() {
        program->release();
        QImage raw(kSize, kSize, QImage::Format_RGBX8888);
        context.functions()->glReadPixels(0, 0, kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE,
                                          raw.bits());
        fbo->release();
        return raw.mirrored().convertToFormat(QImage::Format_RGB888);
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

    void drawsWhatWasUploadedLast() {
        Simple3DObject obj(bw::Translation(0, 0, 0), false);
        obj.addLine({-1, -1, 0}, {1, -1, 0}, {0, 1, 0});
        obj.addPoint(0, 1, 0, 0, 1, 0);

        begin();
        obj.draw();  // not uploaded yet
        QCOMPARE(countNear(finish(), Qt::green), 0);
        QVERIFY(!obj.isReady());
        QVERIFY(obj.pushToGPU());
        begin();
        obj.draw();
        QCOMPARE(finish().pixelColor(kSize / 2, kSize / 2), QColor(Qt::green));

        obj.clear();  // keeps the GL objects, draws nothing
        QVERIFY(!obj.isReady());
        begin();
        obj.draw();
        QVERIFY(obj.pushToGPU());  // empty, still nothing
        begin();
        obj.draw();
        QCOMPARE(countNear(finish(), Qt::black), kSize * kSize);

        // New geometry replaces the old: a full-screen quad, all blue.
        for (float x : {-1.f, 1.f}) {
            obj.addPoint(x, -x, 0, 0, 0, 1);
            obj.addPoint(x, x, 0, 0, 0, 1);
            obj.addPoint(-x, x, 0, 0, 0, 1);
        }
        obj.pushToGPU();
        begin();
        obj.draw();
        QCOMPARE(countNear(finish(), Qt::blue), kSize * kSize);
        QCOMPARE(int(context.functions()->glGetError()), int(GL_NO_ERROR));
    }

    void linesDrawingType() {
        Simple3DObject obj(bw::Translation(0, 0, 0), false);
        obj.setDrawingType(1);
        obj.addLine({-1, 0, 0}, {1, 0, 0}, {1, 1, 0});
        obj.pushToGPU();
        begin();
        obj.draw();
        const int yellow = countNear(finish(), Qt::yellow);
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
        // rotate() applies the new rotation on the left.
        const bw::Orientation half(bw::Rotation(float(M_PI), bw::Translation(1, 0, 0)));
        obj.setRotation(quarter);
        obj.rotate(half);
        const bw::Orientation expected = half * quarter;
        QVERIFY(near(obj.getRotation().x, expected.x) && near(obj.getRotation().w, expected.w) &&
                near(obj.getRotation().y, expected.y) && near(obj.getRotation().z, expected.z));
    }

    // The triad points against the vector it is given and is rebuilt for every call.
    void dynAxisPointsAgainstTheVector() {
        DynAxis dyn;
        begin();
        dyn.draw(1.f, 0.f, 0.f);
        const QImage img = finish();
        const QColor red(200, 70, 70);  // the x segment, left of the centre
        QVERIFY(countNear(img.copy(0, 0, kSize / 2 - 1, kSize), red) > 0);
        QCOMPARE(countNear(img.copy(kSize / 2 + 2, 0, kSize / 2 - 2, kSize), red), 0);
        QCOMPARE(img.pixelColor(kSize / 2 - 3, kSize / 2).red(), 200);
        dyn.draw(0.f, 0.f, 1.f);
        QCOMPARE(dyn.getVertices()[3], 0.f);
        QCOMPARE(dyn.getVertices()[17], -0.15f);
    }

    // ---- Meshes ------------------------------------------------------------------------------

    // Mesh tables number their vertices from 1.
    void fillOryxNumbersVerticesFromOne() {
        float verts[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
        int tris[] = {1, 3, 2, 3, 3, 3};
        Simple3DObject obj(bw::Translation(0, 0, 0), false);
        fillORYX(1, verts, tris, {0.25f, 0.5f, 0.75f}, &obj);
        QCOMPARE(obj.getVertices(), (std::vector<float>{1, 2, 3, 7, 8, 9, 4, 5, 6}));
        QCOMPARE(obj.getColors()[8], 0.75f);
        fillORYX(2, verts, tris, {1, 1, 1}, &obj);
        QCOMPARE(obj.getIndices().size(), std::size_t(9));
        QCOMPARE(obj.getVertices()[18 + 3 * 2], 7.f);
    }

    // ---- CameraGL ----------------------------------------------------------------------------

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
            QVERIFY(near(v(r, 0) * eye.x + v(r, 1) * eye.y + v(r, 2) * eye.z + v(r, 3), 0.f));
        }
        // A point in front of the eye (against forward) lands in the middle of the picture.
        const bw::Transform vp = cam.getViewProjectionMatrix();
        const bw::Translation ahead = eye + cam.getForward() * -5.f;
        float clip[4];
        for (int r = 0; r < 4; ++r) {
            clip[r] = vp(r, 0) * ahead.x + vp(r, 1) * ahead.y + vp(r, 2) * ahead.z + vp(r, 3);
        }
        QVERIFY(near(clip[0] / clip[3], 0.f) && near(clip[1] / clip[3], 0.f));
        QVERIFY(clip[3] > 0);
    }
};

WIDGET_TEST_MAIN(TstSceneObjects)
#include "tst_sceneobjects.moc"
