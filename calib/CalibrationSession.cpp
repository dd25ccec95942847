#include "CalibrationSession.h"

#include <algorithm>
#include <bw/ORYXmcu.hpp>
#include <bw/hid.hpp>
#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>

#include "CameraModels.h"
#include "orientcount.h"

namespace {

constexpr int kMaxReadFailures = 100;
constexpr int kMaxStoreAttempts = 10;
constexpr double kMaxSampleRateHz = 60.0;
// startCapture's rate limit: none, the device streams at its own rate.
constexpr float kNoRateLimit = 0.0f;

void sleepMs(long ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

// Clears the grab thread's running flag however the thread ends.
struct ClearOnExit {
    std::atomic<bool>& flag;
    ~ClearOnExit() { flag = false; }
};

}  // namespace

CalibrationSession::CalibrationSession(unsigned serial_, QObject* parent)
    : QObject(parent), serial(serial_) {
    connect(this, &CalibrationSession::mailboxFilled, this, &CalibrationSession::takeMail,
            Qt::QueuedConnection);
}

CalibrationSession::~CalibrationSession() {
    stopAcquisition();
    if (mcu) mcu->close();
}

// ---- device ------------------------------------------------------------------------------

void CalibrationSession::updateBwDevList() {
    devices = filterMagDevices(bw::hidEnumerate(bw::ORYX_USB_VENDOR_ID, 0));
}

bool CalibrationSession::initOryxMcu() {
    updateBwDevList();
    if (!devices.serials.contains(QStringLiteral("%1").arg(serial))) {
        emit cameraError(tr("ORYX_C/ORYX_D with serial number %1 not detected. Please verify the "
                            "connections and retry")
                             .arg(serial));
        return false;
    }
    mcu.reset();
    auto device = std::make_shared<bw::ORYXmcu>(false, bw::ORYX_USB_VENDOR_ID,
                                                modelFromSerial(serial), false, "");
    if (device->open(serial, false, bw::IMU_ODR_400HZ, nullptr, nullptr, true, false) !=
        bw::MCU_OK) {
        mcuClosed = true;
        emit cameraError(
            tr("Cannot open the ORYX_C/ORYX_D camera. Please verify the connections and restart"));
        return false;
    }
    mcu = std::move(device);
    if (!loadCalibData()) {
        emit cameraError(
            tr("Cannot correctly load calibration parameters from ORYX_C/ORYX_D. "
               "Please verify the connection."));
        return false;
    }
    mcuClosed = false;
    return true;
}

void CalibrationSession::closeDevice() {
    if (mcuClosed) return;
    stopAcquisition();
    if (mcu) mcu->close();
    mcuClosed = true;
}

void CalibrationSession::resumeCapture(bw::ORYXmcu& device) {
    // A capture that does not start leaves the reads empty, and the grab thread reports those.
    if (!device.isCapturing()) (void)device.startCapture(kNoRateLimit);
}

// ---- grab thread -------------------------------------------------------------------------

bool CalibrationSession::startAcquisition() {
    if (threadRunning) return true;
    if (!mcu && !initOryxMcu()) return false;
    resumeCapture(*mcu);
    // A thread that ended by itself (read failures) is collected before the next one starts.
    if (grabThread.joinable()) grabThread.join();
    // A fresh coverage grid per run, queried at every refit and never fed: the device's own
    // verdict rates a calibration. The wiring is kept as it was shipped.
    orientCount = std::make_shared<OrientCount>();
    stopRequested = false;
    threadRunning = true;
    grabThread = std::thread(&CalibrationSession::magDataGrabThread, this, mcu);
    return true;
}

void CalibrationSession::stopAcquisition() {
    if (mcu) mcu->stopCapture();
    if (grabThread.joinable()) {
        stopRequested = true;
        grabThread.join();
    }
}

// One pass per record read. The thread owns nothing but its arguments and locals: it shares the
// device, the mailbox and the two flags with the GUI thread.
void CalibrationSession::magDataGrabThread(std::shared_ptr<bw::ORYXmcu> device) {
    const ClearOnExit clearOnExit{threadRunning};
    resumeCapture(*device);
    if (stopRequested) return;

    std::uint16_t failures = 0;
    std::optional<double> previousT;
    double sampleRate = 0.0;
    do {
        threadRunning = true;
        const bw::_imu_reader_data record = device->getIMUReaderData();
        const ReaderContent content = readerContent(record);
        if (content == ReaderContent::NOTHING) {
            if (++failures > kMaxReadFailures) {
                threadRunning = false;
                postReadFailure();
                return;
            }
            sleepMs(1);
            continue;
        }
        const double t = readerTimeMs(record);
        // Nothing new: ask again at once; the failure count stands.
        if (content == ReaderContent::NO_NEW_SAMPLE || (previousT && t == *previousT)) continue;
        // The rate needs two samples; the first one only sets the time base.
        if (previousT) sampleRate = std::min(1000.0 / (t - *previousT), kMaxSampleRateHz);
        post(grab(*device, record, t, sampleRate));

        // Whole milliseconds of a period in seconds: no pause above 1 Hz, the device's sample
        // arrival paces the loop. Kept as shipped.
        if (sampleRate > 0.0) {
            const long pause = static_cast<long>(1.0 / sampleRate);
            if (pause > 0) sleepMs(pause);
        }
        previousT = t;
        failures = 0;
    } while (!stopRequested);
}

CalibrationSession::Grabbed CalibrationSession::grab(bw::ORYXmcu& device,
                                                     const bw::_imu_reader_data& record,
                                                     double timeMs, double sampleRate) {
    Grabbed g;
    g.field = magAxesFromRaw(record.mag[0], record.mag[1], record.mag[2]);
    const bw::_imu_pose_data pose = device.getIMUPose(kHeadingPoseMode);
    const bw::Vector3<float> field(pose.mag[0], pose.mag[1], pose.mag[2]);
    const bw::Vector3<float> gravity(pose.gravity[0], pose.gravity[1], pose.gravity[2]);
    const PoseHeading heading = headingFromPose(pose, device.calcMagHeading(field, gravity));
    g.reading.headingUncalib = heading.uncalibrated;
    g.reading.headingCalib = heading.calibrated;
    g.reading.calibStatus = heading.calibStatus;
    g.reading.calibQuality = heading.calibQuality;
    g.reading.sampleRate = sampleRate;
    g.reading.timeMs = timeMs;
    return g;
}

// The first item in an empty mailbox wakes the GUI thread; it then takes all there is.
void CalibrationSession::post(const Grabbed& sample) {
    bool wasEmpty = false;
    {
        std::lock_guard<std::mutex> lock(mailbox.lock);
        wasEmpty = mailbox.samples.empty() && !mailbox.readFailed;
        mailbox.samples.push_back(sample);
    }
    if (wasEmpty) emit mailboxFilled(QPrivateSignal());
}

void CalibrationSession::postReadFailure() {
    {
        std::lock_guard<std::mutex> lock(mailbox.lock);
        mailbox.readFailed = true;
    }
    emit mailboxFilled(QPrivateSignal());
}

void CalibrationSession::takeMail() {
    std::vector<Grabbed> grabbed;
    bool readFailed = false;
    {
        std::lock_guard<std::mutex> lock(mailbox.lock);
        grabbed.swap(mailbox.samples);
        readFailed = std::exchange(mailbox.readFailed, false);
    }
    const int before = sampleSet.size();
    for (const Grabbed& sample : grabbed) take(sample);
    if (sampleSet.size() != before) emit samplesAdded(sampleSet.size());
    if (!grabbed.empty()) emit readingChanged();
    if (readFailed) emit cameraError(tr("Error retrieving sensors data"));
}

void CalibrationSession::take(const Grabbed& sample) {
    if (acquiring) sampleSet.append(sample.field);
    // While samples are being collected the status keeps the verdict from before.
    const LiveReading previous = live;
    live = sample.reading;
    if (acquiring) {
        live.calibStatus = previous.calibStatus;
        live.calibQuality = previous.calibQuality;
    }
}

// ---- samples and fit ---------------------------------------------------------------------

void CalibrationSession::stopCollecting() {
    calibrateData();
    acquiring = false;
    calibToStore = true;
}

void CalibrationSession::abandonCollecting() {
    acquiring = false;
    calibToStore = false;
}

void CalibrationSession::calibrateData() {
    if (!sampleSet.fit()) return;
    calibToStore = true;
    emit calibrationFitted();
}

bool CalibrationSession::refitIfDue() {
    if (orientCount) (void)orientCount->getPercNotZero();  // never fed, see startAcquisition
    if (!sampleSet.refitDue()) return false;
    calibrateData();
    sampleSet.noteRefit();
    return true;
}

// ---- EEPROM ------------------------------------------------------------------------------

bool CalibrationSession::loadCalibData() {
    if (!mcu && !initOryxMcu()) return false;
    const bool wasCapturing = mcu->isCapturing();
    if (wasCapturing) mcu->stopCapture();
    const int result = mcu->updateEepromMemory(true);
    if (result == bw::MCU_OK) {
        MagCorrection stored;
        unpackMagCalib(mcu->eeprom(), stored.offset, stored.scale);
        sampleSet.setCorrection(stored);
    }
    if (wasCapturing) resumeCapture(*mcu);
    return result == bw::MCU_OK;
}

CalibrationSession::StoreResult CalibrationSession::saveCalibData() {
    if (!mcu && !initOryxMcu()) return StoreResult::NO_DEVICE;
    const bool wasCapturing = mcu->isCapturing();
    if (wasCapturing) mcu->stopCapture();
    const MagCorrection& c = sampleSet.correction();
    const StoreResult result = writeAndVerify(packMagCalib(c.offset, c.scale));
    // The live heading goes on whether or not the store worked.
    if (wasCapturing) resumeCapture(*mcu);
    if (result == StoreResult::STORED) calibToStore = false;
    return result;
}

// A read-back that differs is written again, until one matches or ten did not.
CalibrationSession::StoreResult CalibrationSession::writeAndVerify(bw::_mag_calib_data record) {
    if (mcu->writeMagCalibInEEprom(record) != bw::MCU_OK) return StoreResult::WRITE_FAILED;
    for (int attempt = 1;; ++attempt) {
        if (mcu->updateEepromMemory(true) == bw::MCU_OK && eepromHoldsRecord(mcu->eeprom(), record))
            return StoreResult::STORED;
        if (attempt == kMaxStoreAttempts) return StoreResult::NOT_VERIFIED;
        if (mcu->writeMagCalibInEEprom(record) != bw::MCU_OK) return StoreResult::WRITE_FAILED;
    }
}
