// One camera enumeration per start, on its own thread, so that the device query never blocks
// the window. The window shows the result of the previous poll and starts the next one.
#pragma once

#include <QThread>
#include <bw/types.hpp>
#include <mutex>
#include <vector>

class DetectionThread : public QThread {
    Q_OBJECT

public:
    DetectionThread() = default;
    ~DetectionThread() override;

    // Held while a poll queries the cameras and while the window opens one, so that the two
    // never talk to the camera layer at the same time.
    std::mutex& mutex() { return pollMutex; }

    // Stereo cameras first, then single-sensor cameras, as the last poll found them.
    std::vector<bw::DeviceProperties> deviceList() const;

protected:
    void run() override;

private:
    std::mutex pollMutex;
    mutable std::mutex listMutex;  // guards only the hand-over of the list
    std::vector<bw::DeviceProperties> devices;
};
