#include "OGL3DWidget.h"

#include <QFont>
#include <QFontMetrics>
#include <QGLShader>
#include <QGLShaderProgram>
#include <QKeyEvent>
#include <QMatrix4x4>
#include <QMouseEvent>
#include <QOpenGLPaintDevice>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "CameraModels.h"
#include "Oryx3D.h"
#include "Shaders.h"
#include "programstates.h"

#ifdef ORYX_ENABLE_CUDA
#include <cuda.h>
#endif

namespace {

const bw::Translation kHomePosition(-0.0542544f, -0.109509f, -0.270714f);
const bw::Orientation kHomeRotation(-0.23252f, 0.170843f, 0.0401341f, 0.956623f);

// Qt's qRound for the pointer position: halves go up.
std::int16_t roundPos(qreal v) { return static_cast<std::int16_t>(qRound(v)); }

QMatrix4x4 toQMatrix(const bw::Matrix4f& m) { return QMatrix4x4(m.m); }

}  // namespace

OGL3DWidget::OGL3DWidget(QWidget* parent) : QOpenGLWidget(parent) {
    qRegisterMetaType<bw::Translation>("bw::Translation");
    qRegisterMetaType<bw::Orientation>("bw::Orientation");
    qRegisterMetaType<bw::Transform>("bw::Transform");
    // Four samples on a copy of the format, which is not applied: no multisampling.
    QSurfaceFormat fmt = format();
    fmt.setSamples(4);
    setFocusPolicy(Qt::StrongFocus);
    setRenderSettings(RenderSettings::active());
}

void OGL3DWidget::setRenderSettings(const RenderSettings& s) {
    settings = s;
    if (settings.nativeWindow) setAttribute(Qt::WA_NativeWindow);
}

OGL3DWidget::~OGL3DWidget() {
    const bool hadScene = initialised || cameraModel || floorGrid || axis || dynAxis;
    if (hadScene) {
        makeCurrent();
    }
    releaseScene();
    if (hadScene) {
        doneCurrent();
    }
}

void OGL3DWidget::releaseScene() {
    initialised = false;
    delete camera;
    delete cameraModel;
    delete floorGrid;
    delete axis;
    delete dynAxis;
    camera = nullptr;
    cameraModel = nullptr;
    floorGrid = nullptr;
    axis = nullptr;
    dynAxis = nullptr;
    delete shaderProgram;  // its shaders are its children
    shaderProgram = nullptr;
}

void OGL3DWidget::initializeGL() {
    initializeGLFunctions();
    if (initRequested) {
        initRequested = false;
        InitProcess();
    }
}

bool OGL3DWidget::InitProcess() {
#ifdef ORYX_ENABLE_CUDA
    CUcontext ctx = nullptr;
    cuCtxGetCurrent(&ctx);
    cuCtxSetCurrent(ctx);
    cudaContext = ctx;
#endif
    if (context() == nullptr) {
        // The camera opened before the view was first shown: there is no GL context yet to
        // build in. initializeGL finishes the job.
        initRequested = true;
        return true;
    }
    makeCurrent();
    // Every camera that opens initialises the view again (its model may differ), so the
    // previous scene goes first.
    releaseScene();
    createORYXProgram();
    camera = new CameraGL(bw::Translation(0.f, 0.f, 0.f), bw::Translation(0.f, 0.f, -1.f),
                          bw::Translation(0.f, 1.f, 0.f));
    camera->setOffsetFromPosition(bw::Translation(0.f, 0.f, 1.f));
    camera->setPosition(kHomePosition);
    camera->setRotation(kHomeRotation);
    CreateAxis();
    CreateFloorGrid();
    CreateORYXModel();
    camera->setProjection(90.f, 90.f, 0.05f, 300.f);
    modelBox = boundingBoxCorners(cameraModel->getVertices());
    ++scene;
    update();
    resize(width() + 1, height());
    glEnable(GL_CULL_FACE);
    initialised = true;
    return true;
}

void OGL3DWidget::setHomeViewpoint() {
    camera->setPosition(kHomePosition);
    camera->setRotation(kHomeRotation);
}

void OGL3DWidget::ResetPosition() {
    if (!camera) {
        return;
    }
    camera->setPosition(bw::Translation(0.f, 0.f, 0.f));
    camera->setDirection(bw::Translation(0.f, 0.f, -1.f), bw::Translation(0.f, 1.f, 0.f));
    camera->setOffsetFromPosition(bw::Translation(0.f, 0.f, 1.f));
    setHomeViewpoint();
}

void OGL3DWidget::createORYXProgram() {
    shaderProgram = new QGLShaderProgram(this);
    auto* vertexShader = new QGLShader(QGLShader::Vertex, shaderProgram);
    vertexShader->compileSourceCode(VERTEX_SHADER);
    auto* fragmentShader = new QGLShader(QGLShader::Fragment, shaderProgram);
    fragmentShader->compileSourceCode(FRAGMENT_SHADER);
    shaderProgram->addShader(vertexShader);
    shaderProgram->addShader(fragmentShader);
    shaderProgram->bindAttributeLocation("vertex", 0);
    shaderProgram->bindAttributeLocation("texCoord", 1);
    shaderProgram->link();
    shaderProgram->bind();
    shaderProgram->setUniformValue("texture", 0);
    shaderProgram->release();
}

void OGL3DWidget::CreateAxis() {
    axis = new Simple3DObject(bw::Translation(0.f, 0.f, 0.f), false);
    axis->setDrawingType(1);
    const bw::Vector3<float> o(0.f, 0.f, 0.f);
    axis->addLine(o, bw::Vector3<float>(-1.f, 0.f, 0.f),
                  bw::Vector3<float>(1.0f, 0.34117648f, 0.34117648f));
    axis->addLine(o, bw::Vector3<float>(0.f, 1.f, 0.f),
                  bw::Vector3<float>(0.1882353f, 0.8392157f, 0.58431375f));
    axis->addLine(o, bw::Vector3<float>(0.f, 0.f, -1.f),
                  bw::Vector3<float>(0.0f, 0.74509805f, 1.0f));
    axis->pushToGPU();
    dynAxis = new DynAxis();
}

void OGL3DWidget::CreateFloorGrid() {
    floorGrid = new Simple3DObject(bw::Translation(0.f, 0.f, 0.f), false);
    floorGrid->setDrawingType(1);
    const bw::Vector3<float> colour(0.8509804f, 1.0f, 0.25882354f);
    for (int i = -5; i <= 5; ++i) {
        for (int j = -5; j <= 5; ++j) {
            addVert(floorGrid, static_cast<float>(i), static_cast<float>(j), -1.0f, 1.f / 3.f, 5.0f,
                    colour);
        }
    }
    floorGrid->pushToGPU();
}

void OGL3DWidget::addVert(Simple3DObject* object, float x, float z, float y, float half,
                          float limit, const bw::Vector3<float>& color) {
    object->addLine(bw::Vector3<float>(x + half, y, z), bw::Vector3<float>(x - half, y, z), color);
    object->addLine(bw::Vector3<float>(x, y, z + half), bw::Vector3<float>(x, y, z - half), color);
    if (std::fabs(x) == limit && std::fabs(z) == limit) {
        object->addLine(bw::Vector3<float>(x, y + half, z), bw::Vector3<float>(x, y - half, z),
                        color);
    }
}

void OGL3DWidget::getColor(int n, int i, float& r, float& g, float& b) {
    const float t = std::fabs(1.f - 2.f * static_cast<float>(i) / static_cast<float>(n));
    r = 0.1f * t;
    g = 0.3f * t;
    b = 0.8f * t;
}

void OGL3DWidget::CreateORYXModel() {
    cameraModel = new Simple3DObject(bw::Translation(0.f, 0.f, 0.f), false);
    switch (modelInfo(unsigned(ProgramStates::getIntAttr(IntSlot::MODEL_CODE))).mesh) {
        case CameraMesh::ORYX: {
            using namespace ORYX_obj;
            fillORYX(ALLUMINIUM_TRIANGLE_COUNT, vertices, alluminiumTriangles, ALLUMINIUM_COLOR,
                     cameraModel);
            fillORYX(DARK_TRIANGLE_COUNT, vertices, darkTriangles, DARK_COLOR, cameraModel);
            break;
        }
        case CameraMesh::ORYX_B: {
            using namespace ORYX_B_obj;
            fillORYX(ALLUMINIUM_TRIANGLE_COUNT, vertices, alluminiumTriangles, ALLUMINIUM_COLOR,
                     cameraModel);
            fillORYX(ALLUMINIUM_TRIANGLE_2_COUNT, vertices, alluminiumTriangles2, ALLUMINIUM_COLOR,
                     cameraModel);
            fillORYX(ALLUMINIUM_TRIANGLE_3_COUNT, vertices, alluminiumTriangles3, ALLUMINIUM_COLOR,
                     cameraModel);
            fillORYX(DARK_TRIANGLE_COUNT, vertices, darkTriangles, DARK_COLOR, cameraModel);
            fillORYX(DARK_TRIANGLE_2_COUNT, vertices, darkTriangles2, DARK_COLOR, cameraModel);
            fillORYX(GREY_TRIANGLE_COUNT, vertices, greyTriangles, LENS_COLOR, cameraModel);
            fillORYX(GREY_TRIANGLE_2_COUNT, vertices, greyTriangles2, LENS_COLOR, cameraModel);
            fillORYX(YELLOW_TRIANGLE_COUNT, vertices, yellowTriangles, YELLOW_COLOR, cameraModel);
            break;
        }
        case CameraMesh::ORYX_C: {
            using namespace ORYX_C_obj;
            fillORYX(ALLUMINIUM_TRIANGLE_COUNT, vertices, alluminiumTriangles, ALLUMINIUM_COLOR,
                     cameraModel);
            fillORYX(DARK_TRIANGLE_COUNT, vertices, darkTriangles, DARK_COLOR, cameraModel);
            break;
        }
    }
    cameraModel->setDrawingType(4);
    cameraModel->pushToGPU();
}

void OGL3DWidget::resizeGL(int w, int h) {
    viewWidth = static_cast<float>(w * devicePixelRatioF());
    viewHeight = static_cast<float>(h * devicePixelRatioF());
    glViewport(0, 0, static_cast<GLsizei>(viewWidth), static_cast<GLsizei>(viewHeight));
}

void OGL3DWidget::reshape() {
    const int side = static_cast<int>(std::max(viewWidth, viewHeight));
    glViewport(static_cast<GLint>((viewWidth - side) / 2),
               static_cast<GLint>((viewHeight - side) / 2), side, side);
    const float h = camera->getHorizontalFOV();
    camera->setProjection(h, h, camera->getZNear(), camera->getZFar());
}

void OGL3DWidget::paintGL() {
    makeCurrent();
    glClearColor(0.09803922f, 0.09803922f, 0.09803922f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    if (initialised) {
        visualize();
    }
    roundedBorder();
    lastFrame = frameFor(shownPose);
    framePainted = true;
}

void OGL3DWidget::requestFrame() {
    if (!settings.redrawOnlyOnChange || frameDue()) update();
}

bool OGL3DWidget::frameDue() {
    // Qt paints on its own too (first show, resize, expose); until then there is nothing to
    // compare with.
    if (!framePainted) return true;
    return looksDifferent(lastFrame, frameFor(poseNow()), modelBox);
}

ViewFrame OGL3DWidget::frameFor(const PoseSlot& p) {
    ViewFrame frame;
    frame.scene = initialised ? scene : 0;
    frame.width = viewWidth;
    frame.height = viewHeight;
    frame.movingState = movingState.load();
    if (!initialised) return frame;
    // visualize does the same first: the matrix is the one the next frame would use.
    camera->update();
    frame.viewProjection = camera->getViewProjectionMatrix();
    frame.model.setOrientation(p.orientation);
    frame.model.setTranslation(p.position);
    frame.gravity = bw::Vector3<float>(p.gx, p.gy, p.gz);
    return frame;
}

void OGL3DWidget::setGravity(float x, float y, float z) {
    std::lock_guard<std::mutex> lock(poseMutex);
    pose.gx = x;
    pose.gy = y;
    pose.gz = z;
}

void OGL3DWidget::setCameraModelPos(const bw::Translation& t) {
    std::lock_guard<std::mutex> lock(poseMutex);
    pose.position = t;
}

void OGL3DWidget::setCameraModelOr(const bw::Orientation& q) {
    std::lock_guard<std::mutex> lock(poseMutex);
    pose.orientation = q;
}

void OGL3DWidget::setCameraModelTr(const bw::Transform& t) {
    std::lock_guard<std::mutex> lock(poseMutex);
    pose.position = t.getTranslation();
    pose.orientation = t.getOrientation();
}

bw::Orientation OGL3DWidget::modelOrientation() const {
    std::lock_guard<std::mutex> lock(poseMutex);
    return pose.orientation;
}

bw::Translation OGL3DWidget::modelPosition() const {
    std::lock_guard<std::mutex> lock(poseMutex);
    return pose.position;
}

OGL3DWidget::PoseSlot OGL3DWidget::poseNow() const {
    std::lock_guard<std::mutex> lock(poseMutex);
    return pose;
}

void OGL3DWidget::applyPose() {
    const PoseSlot p = poseNow();
    shownPose = p;
    cameraModel->setPosition(p.position);
    cameraModel->setRotation(p.orientation);
    dynAxis->setRotation(p.orientation);
    dynAxisX = p.gx;
    dynAxisY = p.gy;
    dynAxisZ = p.gz;
}

void OGL3DWidget::visualize() {
    if (!initialised) {
        return;
    }
    // The scene's fragment shader writes alpha 0.5. Stored in the framebuffer, it would make the
    // window's compositor (and QWidget::grab) read the view as translucent premultiplied colour,
    // whose channels then overflow; the alpha of the clear, 1, is kept instead.
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    glEnable(GL_CULL_FACE);
    applyPose();
    glLineWidth(1.5f);
    camera->update();
    const bw::Transform vp = camera->getViewProjectionMatrix();

    reshape();
    const int side = static_cast<int>(std::max(viewWidth, viewHeight));
    glViewport(static_cast<GLint>((viewWidth - side) / 2),
               static_cast<GLint>((viewHeight - side) / 2), side, side);

    shaderProgram->bind();
    shaderProgram->setUniformValue("u_mvpMatrix", toQMatrix(vp));
    glLineWidth(1.5f);
    floorGrid->draw();
    glLineWidth(3.5f);
    axis->draw();

    const GLint location = shaderProgram->uniformLocation("u_mvpMatrix");
    const bw::Transform model = cameraModel->getModelMatrix();
    const bw::Matrix4f mvp = bw::Matrix4f::transpose(model) * bw::Matrix4f::transpose(vp);
    glUniformMatrix4fv(location, 1, GL_FALSE, mvp.m);
    dynAxis->draw(dynAxisX, dynAxisY, dynAxisZ);
    cameraModel->draw();
    shaderProgram->release();
    // QPainter draws the border next and leaves face culling as it finds it; the triangles of
    // its strokes do not all wind counter-clockwise, and the culled ones took the frame away.
    glDisable(GL_CULL_FACE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void OGL3DWidget::roundedBorder() {
    // Painted straight into the framebuffer being drawn. A QPainter on the widget itself would
    // follow QWidget::render's redirection while the window is grabbed, land in the grab's
    // pixmap and then be covered by this very framebuffer.
    QOpenGLPaintDevice device(size() * devicePixelRatioF());
    device.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&device);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(25, 25, 25), 5));
    painter.drawRoundedRect(QRect(-1, -1, width() + 3, height() + 2), 10, 10);
    painter.setPen(QPen(QColor(60, 60, 60), 1));
    painter.drawRoundedRect(QRect(1, 1, width() - 1, height() - 1), 10, 10);
}

void OGL3DWidget::showMovingInfo(int state) {
    const QColor white(255, 255, 255, 150);
    const QColor amber(255, 205, 0, 150);
    const QColor frame(150, 150, 150);
    const QColor text(30, 30, 30);
    const QColor fill1 = state == 0 ? white : amber;
    const QColor fill2 = (state == 0 || state == 1) ? white : amber;
    const QString moving = tr("Camera Moving");
    const QString falling = tr("Camera Falling");

    QPainter painter(this);
    QFont font(QString("font-family: ") + "Roboto" + "; font-weight: Medium; font-size: 15pt;");
    painter.setFont(font);
    const QFontMetrics fm(font);
    const QRect r1 = fm.boundingRect(moving);
    const QRect r2 = fm.boundingRect(falling);
    const double w = (std::max(r1.right() - r1.left(), r2.right() - r2.left()) + 1) * 1.3;
    const double h = (r1.height() + 1) * 1.3;
    const QRectF box1(10, 10, w, h);
    const QRectF box2(10, 10 + 1.3 * h, w, h);
    QPen pen(frame, 1, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    pen.setCosmetic(false);
    painter.setPen(pen);
    QPainterPath p1;
    p1.addRoundedRect(box1, 5, 5);
    painter.fillPath(p1, fill1);
    painter.drawPath(p1);
    QPainterPath p2;
    p2.addRoundedRect(box2, 5, 5);
    painter.fillPath(p2, fill2);
    painter.drawPath(p2);
    pen.setColor(text);
    painter.setPen(pen);
    painter.drawText(box1, Qt::AlignCenter, moving);
    painter.drawText(box2, Qt::AlignCenter, falling);
}

void OGL3DWidget::mousePressEvent(QMouseEvent* event) {
    if (event->buttons() & (Qt::LeftButton | Qt::RightButton)) {
        mousePressed = true;
        previousMousePos[0] = roundPos(event->localPos().x());
        previousMousePos[1] = roundPos(event->localPos().y());
    }
}

void OGL3DWidget::mouseReleaseEvent(QMouseEvent*) { mousePressed = false; }

void OGL3DWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!mousePressed) {
        return;
    }
    if (event->buttons() & Qt::LeftButton) {
        mousePos[0] = roundPos(event->localPos().x());
        mousePos[1] = roundPos(event->localPos().y());
        mouseMotion[0] = static_cast<float>(mousePos[0] - previousMousePos[0]) / 5.f;
        mouseMotion[1] = static_cast<float>(mousePos[1] - previousMousePos[1]) / 5.f;
        rotateCamera();
        previousMousePos[0] = mousePos[0];
        previousMousePos[1] = mousePos[1];
    }
    if (event->buttons() & Qt::RightButton) {
        mousePos[0] = roundPos(event->localPos().x());
        mousePos[1] = roundPos(event->localPos().y());
        mouseMotion[0] = static_cast<float>(mousePos[0] - previousMousePos[0]) / 50.f;
        mouseMotion[1] = static_cast<float>(mousePos[1] - previousMousePos[1]) / 50.f;
        translateCamera();
        previousMousePos[0] = mousePos[0];
        previousMousePos[1] = mousePos[1];
    }
}

void OGL3DWidget::rotateCamera() {
    if (!camera) {
        return;
    }
    camera->rotate(bw::Rotation(mouseMotion[1] * 0.015f, camera->getRight()));
    camera->rotate(bw::Rotation(mouseMotion[0] * 0.015f, -camera->getVertical()));
}

void OGL3DWidget::translateCamera() {
    if (!camera) {
        return;
    }
    camera->translate(camera->getUp() * (mouseMotion[1] * 0.1f));
    camera->translate(camera->getRight() * (mouseMotion[0] * 0.1f));
}

void OGL3DWidget::wheelEvent(QWheelEvent* event) {
    if (!camera) {
        return;
    }
    // The legacy vertical delta, in eighths of a degree.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    const int d = event->delta() / 8;
#pragma GCC diagnostic pop
    camera->translate(camera->getForward() * (static_cast<float>(-d) * 0.01f));
}

void OGL3DWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Up:
            mouseMotion[0] = 0.f;
            mouseMotion[1] = -0.1f;
            translateCamera();
            break;
        case Qt::Key_Down:
            mouseMotion[0] = 0.f;
            mouseMotion[1] = 0.1f;
            translateCamera();
            break;
        case Qt::Key_Left:
            mouseMotion[0] = -0.1f;
            mouseMotion[1] = 0.f;
            translateCamera();
            break;
        case Qt::Key_Right:
            mouseMotion[0] = 0.1f;
            mouseMotion[1] = 0.f;
            translateCamera();
            break;
        case 82:  // R
            ResetPosition();
            break;
        default:
            break;
    }
}
