#include "DetectionThread.h"

#include <bw/Camera.hpp>

DetectionThread::~DetectionThread() {
    wait();
    // QThread::wait synchronises through Qt's own futexes, which ThreadSanitizer cannot see.
    // Taking the list lock once orders the last poll's hand-over before the list is destroyed.
    std::lock_guard<std::mutex> lock(listMutex);
}

std::vector<bw::DeviceProperties> DetectionThread::deviceList() const {
    std::lock_guard<std::mutex> lock(listMutex);
    return devices;
}

void DetectionThread::run() {
    // A camera being opened holds the mutex: skip this poll rather than disturb the opening.
    if (!pollMutex.try_lock()) return;
    std::vector<bw::DeviceProperties> found = bw::Camera::getDeviceList();
    const std::vector<bw::DeviceProperties> singles = bw::CameraOne::getDeviceList();
    found.insert(found.end(), singles.begin(), singles.end());
    {
        std::lock_guard<std::mutex> lock(listMutex);
        devices.swap(found);
    }
    pollMutex.unlock();
}
