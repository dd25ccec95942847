// The sampling thread: reads the camera's sensor record as fast as the camera answers and
// appends one row per new IMU sample.
#include "InputThreadModul.h"
#include "OGL3DWidget.h"
#include "SampleIngest.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

bool isSingleSensorModel(unsigned model) { return model == 30 || model == 31; }

// The view copies what it is given once per frame; these calls only fill its hand-over slot.
void turnOrientationView(OGL3DWidget& view, const SampleIngest::Pose& pose) {
    view.setGravity(pose.gravity[0], pose.gravity[1], pose.gravity[2]);
    view.setCameraModelOr(pose.orientation);
    view.setCameraModelPos(bw::Translation(0.f, 0.f, 0.f));
    view.setMovingState(pose.movingState);
}

}  // namespace

void MainWindow::dataThreadFunc() {
    // stopDataThread and dataThreadRunning were set by the starter, before this thread existed:
    // setting them here again could swallow a stop that came before the first iteration.
    SampleIngest ingest(series, levels, dataMutex, this);
    OGL3DWidget& orientationView = *ui->widget_3d_view;
    for (;;) {
        InputThreadModul* module = inputModule.load();
        if (module == nullptr) break;
        const unsigned model = module->getModel();
        const bool single = isSingleSensorModel(model);
        if (!single && !module->isStereoOpen()) break;
        if (single && !module->singleCamera().isOpened()) break;
        const int result =
            single
                ? module->singleCamera().getSensorsData(sensorsData, bw::TIME_REFERENCE::CURRENT)
                : module->stereoCamera().getSensorsData(sensorsData, bw::TIME_REFERENCE::CURRENT);
        if (result == bw::CAMERA_NOT_DETECTED) {
            // The camera is gone: this thread releases it; the window's disconnect handling
            // takes care of the rest.
            noCamera = true;
            std::lock_guard<std::mutex> lock(inputLifetime);
            module->notifyCameraLost();
            module->stopGrabbing();
            delete inputModule.exchange(nullptr);
            break;
        }
        if (ingest.ingest(sensorsData) == SampleIngest::Outcome::Appended)
            turnOrientationView(orientationView, ingest.pose());
        if (stopDataThread) break;
    }
    dataThreadRunning = false;
}
