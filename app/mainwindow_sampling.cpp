// The sampling thread: reads the camera's sensor record as fast as the camera answers and
// appends one row per new IMU sample.
#include "InputThreadModul.h"
#include "SampleIngest.h"
#include "mainwindow.h"

namespace {

bool isSingleSensorModel(unsigned model) { return model == 30 || model == 31; }

}  // namespace

void MainWindow::dataThreadFunc() {
    // stopDataThread and dataThreadRunning were set by the starter, before this thread existed:
    // setting them here again could swallow a stop that came before the first iteration.
    SampleIngest ingest(series, levels, dataMutex, this);
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
        ingest.ingest(sensorsData);
        if (stopDataThread) break;
    }
    dataThreadRunning = false;
}
