// What one frame of the orientation view costs: paintGL of the finest camera model (ORYX_B,
// 1513 triangles) over the floor grid and axes, the model turned a little every frame as the
// sampling thread does. glFinish() ends each frame so that the rendering itself is timed.
//
// Needs a display with OpenGL: run under xvfb-run (Mesa's software renderer).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <cmath>

#include "OGL3DWidget.h"
#include "programstates.h"

namespace {

class FrameView : public OGL3DWidget {
public:
    using OGL3DWidget::paintGL;
};

void runFrames(benchmark::State& state, int modelCode) {
    ProgramStates::setIntAttr(18, modelCode);
    FrameView view;
    view.resize(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    view.show();
    QApplication::processEvents();
    view.InitProcess();
    QApplication::processEvents();
    view.makeCurrent();
    auto* f = QOpenGLContext::currentContext()->functions();
    float angle = 0.f;
    for (auto _ : state) {
        angle += 0.01f;
        view.setCameraModelOr(bw::Orientation(bw::Rotation(angle, bw::Translation(0, 1, 0))));
        view.setGravity(std::sin(angle), std::cos(angle), 0.f);
        view.makeCurrent();
        view.paintGL();
        f->glFinish();
    }
    state.counters["triangles"] = static_cast<double>(view.model()->getIndices().size() / 3);
}

void BM_FrameOryxB(benchmark::State& state) { runFrames(state, 1); }
void BM_FrameOryxC(benchmark::State& state) { runFrames(state, 2); }

}  // namespace

BENCHMARK(BM_FrameOryxB)->Args({400, 300})->Args({800, 600})->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FrameOryxC)->Args({400, 300})->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
