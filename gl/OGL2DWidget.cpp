#include "OGL2DWidget.h"

#include <QGLShader>
#include <QGLShaderProgram>
#include <QMatrix4x4>
#include <QMouseEvent>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "programstates.h"

#ifdef ORYX_ENABLE_CUDA
#include <cuda.h>
#include <cuda_gl_interop.h>
#include <cuda_runtime.h>
#endif

namespace {

const char* kVertexShader =
    "#version 330 core\n"
    "attribute highp vec4 vertex;\n"
    "attribute mediump vec4 texCoord;\n"
    "varying mediump vec4 texc;\n"
    "uniform mediump mat4 matrix;\n"
    "void main(void)\n"
    "{\n"
    "    gl_Position = matrix * vertex;\n"
    "    texc = texCoord;\n"
    "}\n";

const char* kFragmentShader =
    "#version 330 core\n"
    "uniform sampler2D texture;\n"
    "varying mediump vec4 texc;\n"
    "void main(void)\n"
    "{\n"
    "    vec4 colin =texture2D(texture, texc.st);\n"
    "     vec4 colout =vec4(colin.b,colin.g,colin.r,colin.a);\n"
    "     gl_FragColor =colout;\n"
    "}\n";

}  // namespace

OGL2DWidget::OGL2DWidget(QWidget* parent) : QGLWidget(parent) {
    QGLFormat fmt = format();
    fmt.setDoubleBuffer(true);
    setFormat(fmt);
    if (parent) {
        defaultWidth = parent->width();
        defaultHeight = parent->height();
    }
}

OGL2DWidget::~OGL2DWidget() {
    Deinit();
    available = false;
    initialisedGL = false;
    selectionLocked = false;
    makeCurrent();
    if (texture) {
        glDeleteTextures(1, &texture);
    }
    delete shaderProgram;
}

void OGL2DWidget::initializeGL() {
    makeCurrent();
    createShader();
    initialisedGL = true;
}

void OGL2DWidget::createShader() {
    auto* vshader = new QGLShader(QGLShader::Vertex, this);
    vshader->compileSourceCode(kVertexShader);
    auto* fshader = new QGLShader(QGLShader::Fragment, this);
    fshader->compileSourceCode(kFragmentShader);
    shaderProgram = new QGLShaderProgram;
    shaderProgram->addShader(vshader);
    shaderProgram->addShader(fshader);
    shaderProgram->bindAttributeLocation("vertex", 0);
    shaderProgram->bindAttributeLocation("texCoord", 1);
    shaderProgram->link();
    shaderProgram->bind();
    shaderProgram->setUniformValue("texture", 0);
    shaderProgram->release();
}

void OGL2DWidget::InitGLProcess(int width, int height, int pitch) {
    imageWidth = width;
    imageHeight = height;
    imagePitch = pitch;
    makeCurrent();
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    {
        std::vector<unsigned char> zeros(static_cast<std::size_t>(width) * height * 4, 0);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     zeros.data());
    }
    glBindTexture(GL_TEXTURE_2D, 0);
#ifdef ORYX_ENABLE_CUDA
    const cudaError_t err = cudaGraphicsGLRegisterImage(&cudaResource, texture, GL_TEXTURE_2D,
                                                        cudaGraphicsRegisterFlagsNone);
    if (err != cudaSuccess) {
        std::printf("%s\n", cudaGetErrorName(err));
    }
#endif
    if (widgetWidth < 0 || widgetHeight < 0) {
        widgetWidth = geometry().width();
        widgetHeight = geometry().height();
        computeViewport(widgetWidth, widgetHeight);
    }
    resizeGL(widgetWidth, widgetHeight);
    available = true;
    emit init(true);
}

void OGL2DWidget::computeViewport(int w, int h) {
    if (imageWidth <= 0 || imageHeight <= 0 || h <= 0) {
        return;
    }
    const float r = static_cast<float>(w) / static_cast<float>(h);
    const float ri = static_cast<float>(imageWidth) / static_cast<float>(imageHeight);
    if (r > ri) {
        const int vw = static_cast<int>(static_cast<float>(h) * ri);
        const int x = std::abs(w - vw) / 2;
        viewport[0] = x;
        viewport[1] = 0;
        viewport[2] = vw;
        viewport[3] = h;
    } else {
        const int vh = static_cast<int>(static_cast<float>(w) / ri);
        const int y = std::abs(h - vh) / 2;
        viewport[0] = 0;
        viewport[1] = y;
        viewport[2] = w;
        viewport[3] = vh;
    }
}

void OGL2DWidget::resizeGL(int w, int h) {
    if (widgetWidth >= 0 && widgetHeight >= 0) {
        widgetWidth = w;
        widgetHeight = h;
        computeViewport(w, h);
        glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    } else {
        widgetWidth = w;
        widgetHeight = h;
    }
}

void OGL2DWidget::Ingest() {
    if (!frameSource) {
        return;
    }
#ifdef ORYX_ENABLE_CUDA
    cuCtxSetCurrent(static_cast<CUcontext>(cudaContext));
    makeCurrent();
    cudaArray_t array = nullptr;
    cudaGraphicsMapResources(1, &cudaResource, 0);
    cudaGraphicsSubResourceGetMappedArray(&array, cudaResource, 0, 0);
    cudaMemcpy2DToArray(array, 0, 0, frameSource, imagePitch,
                        static_cast<std::size_t>(imageWidth) * 4, imageHeight,
                        cudaMemcpyDeviceToDevice);
    cudaGraphicsUnmapResources(1, &cudaResource, 0);
#else
    makeCurrent();
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, imagePitch / 4);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, imageWidth, imageHeight, GL_RGBA, GL_UNSIGNED_BYTE,
                    frameSource);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
#endif
    update();
}

void OGL2DWidget::paintGL() {
    makeCurrent();
    glClearColor(0.f, 0.f, 0.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (!available || !frameSource) {
        return;
    }
#ifdef ORYX_ENABLE_CUDA
    cuCtxSetCurrent(static_cast<CUcontext>(cudaContext));
#endif
    static const GLfloat texCoords[] = {1, 0, 0, 0, 0, 1, 1, 1};
    static const GLfloat vertices[] = {1, -1, 0, -1, -1, 0, -1, 1, 0, 1, 1, 0};
    qglClearColor(clearColor);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    shaderProgram->bind();
    QMatrix4x4 matrix;
    matrix.setToIdentity();
    matrix.ortho(QRectF(-1, -1, 2, 2));
    shaderProgram->setUniformValue("matrix", matrix);
    shaderProgram->enableAttributeArray(0);
    shaderProgram->enableAttributeArray(1);
    shaderProgram->setAttributeArray(0, vertices, 3);
    shaderProgram->setAttributeArray(1, texCoords, 2);
    glBindTexture(GL_TEXTURE_2D, texture);
    glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
    glBindTexture(GL_TEXTURE_2D, 0);
    shaderProgram->disableAttributeArray(0);
    shaderProgram->disableAttributeArray(1);
    shaderProgram->release();
}

void OGL2DWidget::stopDraw() {
    frameSource = nullptr;
    makeCurrent();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glClearColor(0.f, 0.f, 0.f, 1.f);
}

void OGL2DWidget::Deinit() {
    stopDraw();
    available = false;
}

void OGL2DWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        if (selectionLocked && ProgramStates::getIntAttr(IntSlot::IMAGE_CLICK_LOCK) != 0) {
            return;
        }
        const double u = static_cast<double>(qRound(event->localPos().x())) / width();
        const double v = static_cast<double>(qRound(event->localPos().y())) / height();
        if (u >= 0.0 && u <= 1.0 && v >= 0.0 && v <= 1.0) {
            ProgramStates::setDoubleAttr(DoubleSlot::CLICKED_X, u);
            ProgramStates::setDoubleAttr(DoubleSlot::CLICKED_Y, v);
        }
    } else if (event->button() == Qt::RightButton) {
        ProgramStates::setDoubleAttr(DoubleSlot::CLICKED_X, -1.0);
        ProgramStates::setDoubleAttr(DoubleSlot::CLICKED_Y, -1.0);
    }
}
