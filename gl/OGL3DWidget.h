// Orientation view: a 3D model of the camera turned by its measured orientation, over a floor
// grid, with a fixed axis triad and a triad that follows the measured acceleration direction.
//
// Thread use: every GL call happens on the GUI thread. The sampling thread hands over the model
// pose, the gravity direction and the motion state through setCameraModelOr/Pos/Tr,
// setGravity and setMovingState; these write a small mutex-guarded slot that the GUI thread
// copies once per frame.
#pragma once

#include <QGLFunctions>
#include <QMetaType>
#include <QOpenGLWidget>
#include <atomic>
#include <bw/geometry.hpp>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "CameraGL.h"
#include "RenderSettings.h"
#include "Simple3DObject.h"
#include "ViewFrame.h"

class QGLShader;
class QGLShaderProgram;

// The pose slots take these by value through queued connections too.
Q_DECLARE_METATYPE(bw::Translation)
Q_DECLARE_METATYPE(bw::Orientation)
Q_DECLARE_METATYPE(bw::Transform)

class OGL3DWidget : public QOpenGLWidget, protected QGLFunctions {
    Q_OBJECT

public:
    explicit OGL3DWidget(QWidget* parent = nullptr);
    ~OGL3DWidget() override;

    void createORYXProgram();
    void CreateAxis();
    void CreateFloorGrid();
    void CreateORYXModel();
    void addVert(Simple3DObject* object, float x, float z, float y, float half, float limit,
                 const bw::Vector3<float>& color);
    void getColor(int n, int i, float& r, float& g, float& b);
    void showMovingInfo(int state);
    void roundedBorder();
    void reshape();
    void rotateCamera();
    void translateCamera();

    // Thread-safe hand-over from the sampling thread.
    // The vector given to the dynamic triad (the unit vector of the measured acceleration).
    void setGravity(float x, float y, float z);
    // Motion state of the camera: 0 still, 1 moving, 2 falling. Kept for showMovingInfo.
    void setMovingState(int state) { movingState.store(state); }
    int getMovingState() const { return movingState.load(); }

    // Inspection (GUI thread).
    bool isInitialised() const { return initialised; }
    const CameraGL* viewCamera() const { return camera; }
    const Simple3DObject* model() const { return cameraModel; }
    bw::Orientation modelOrientation() const;
    bw::Translation modelPosition() const;
    float getViewWidth() const { return viewWidth; }
    float getViewHeight() const { return viewHeight; }

    // Taken from RenderSettings::active() when the view is built. A native window, once made,
    // stays.
    const RenderSettings& renderSettings() const { return settings; }
    void setRenderSettings(const RenderSettings& s);

public slots:
    // Schedules the next frame (the main window's image timer). With redrawOnlyOnChange set,
    // only when the pose, the viewpoint or the size moved what is on screen since the last frame.
    void requestFrame();
    bool InitProcess();
    void ResetPosition();
    void visualize();
    void setCameraModelPos(const bw::Translation& t);
    void setCameraModelOr(const bw::Orientation& q);
    void setCameraModelTr(const bw::Transform& t);

protected:
    void initializeGL() override;
    void resizeGL(int w, int h) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct PoseSlot {
        bw::Translation position;
        bw::Orientation orientation;
        float gx = 0.f, gy = 0.f, gz = 0.f;
    };
    void applyPose();
    void setHomeViewpoint();
    void releaseScene();
    PoseSlot poseNow() const;
    ViewFrame frameFor(const PoseSlot& p);
    bool frameDue();

    bool initialised = false;
    bool initRequested = false;
    float mouseMotion[2] = {0.f, 0.f};
    bw::Translation spareTranslation;
    bool spareFlag = false;
    bool mousePressed = false;
    std::int16_t mousePos[2] = {0, 0};
    std::int16_t previousMousePos[2] = {0, 0};
    float viewWidth = 320.f;
    float viewHeight = 240.f;
    float dynAxisX = 0.f, dynAxisY = 0.f, dynAxisZ = 0.f;
    QGLShaderProgram* shaderProgram = nullptr;
    CameraGL* camera = nullptr;
    Simple3DObject* cameraModel = nullptr;
    Simple3DObject* floorGrid = nullptr;
    Simple3DObject* axis = nullptr;
    DynAxis* dynAxis = nullptr;
    void* cudaContext = nullptr;

    mutable std::mutex poseMutex;
    PoseSlot pose;
    std::atomic<int> movingState{0};

    RenderSettings settings;
    PoseSlot shownPose;  // what applyPose took for the frame being drawn
    int scene = 0;       // counts the scenes InitProcess built
    std::vector<bw::Vector3<float>> modelBox;
    ViewFrame lastFrame;
    bool framePainted = false;
};
