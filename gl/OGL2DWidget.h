// Camera image view: one BGRA frame drawn as a textured quad, letter-boxed to the image's aspect
// ratio. A left click stores the clicked point (normalised to the widget) in program-state
// doubles 1 and 2; a right click resets both to -1.
//
// Frames come from host memory (setHostFrame, then Ingest). With ORYX_ENABLE_CUDA the frame
// source is a CUDA device pointer instead (setDeviceFrame), copied device-to-device into the
// texture registered with CUDA.
#pragma once

#include <QColor>
#include <QGLWidget>
#include <cstdint>

class QGLShaderProgram;
struct cudaGraphicsResource;

class OGL2DWidget : public QGLWidget {
    Q_OBJECT

public:
    explicit OGL2DWidget(QWidget* parent = nullptr);
    ~OGL2DWidget() override;

    void InitGLProcess(int width, int height, int pitch);
    void Ingest();
    void setAvailable(bool value) { available = value; }
    bool isAvailable() const { return available; }
    void stopDraw();
    void Deinit();

    // Host frame: width x height BGRA pixels, rows imagePitch bytes apart. The pointer must stay
    // valid until the next Ingest(); null means no frame.
    void setHostFrame(const std::uint8_t* bgra) { frameSource = bgra; }
#ifdef ORYX_ENABLE_CUDA
    void setDeviceFrame(const void* devicePtr) { frameSource = devicePtr; }
    void setCudaContext(void* ctx) { cudaContext = ctx; }
#endif
    // Set by the main window: while true and program-state int 4 is non-zero, left clicks are
    // ignored.
    void setSelectionLocked(bool value) { selectionLocked = value; }

    QRect getViewport() const { return QRect(viewport[0], viewport[1], viewport[2], viewport[3]); }

signals:
    void init(bool);

protected:
    void initializeGL() override;
    void paintGL() override;
    void resizeGL(int w, int h) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void createShader();
    void computeViewport(int w, int h);

    void* cudaContext = nullptr;
    const void* frameSource = nullptr;
    bool available = false;
    bool initialisedGL = false;
    bool selectionLocked = false;
    int widgetWidth = -1;
    int widgetHeight = -1;
    int imageWidth = 0;
    int imageHeight = 0;
    int imagePitch = 0;
    int viewport[4] = {0, 0, 0, 0};
    int defaultWidth = 960;
    int defaultHeight = 540;
    QGLShaderProgram* shaderProgram = nullptr;
    GLuint texture = 0;
    cudaGraphicsResource* cudaResource = nullptr;
    QColor clearColor{0, 0, 0, 255};
};
