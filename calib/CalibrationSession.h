// One magnetometer calibration of an ORYX_C / ORYX_D camera, below the dialog that shows it: the
// camera's sensor micro-controller, the grab thread that reads it, the samples collected while
// the user turns the camera and their fit, and the calibration in the camera's EEPROM.
//
// The session lives on the GUI thread and is driven from it. The grab thread only reads the
// device and hands each new sample over through a mailbox; the session takes the samples in on
// its own thread, so everything but the device, the mailbox and the thread's two flags belongs
// to the GUI thread alone. Every signal is emitted on the GUI thread.
#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "MagSampleSet.h"
#include "magcalibrecord.h"

class OrientCount;

namespace bw {
class ORYXmcu;
}

class CalibrationSession : public QObject {
    Q_OBJECT

public:
    // What the device said with its newest sample.
    struct LiveReading {
        double headingUncalib = 0.0;  // degrees, the library's heading of the raw field
        double headingCalib = 0.0;    // degrees, the device's heading with its calibration
        // The device's verdict; kept as it was while samples are being collected.
        int calibStatus = MAG_CALIB_UNKNOWN;
        float calibQuality = 0.f;
        double sampleRate = 0.0;  // Hz, capped at 60
        double timeMs = 0.0;      // device time of the sample
    };

    enum class StoreResult {
        STORED,        // written and read back equal
        NO_DEVICE,     // the micro-controller could not be opened
        WRITE_FAILED,  // the device refused a write
        NOT_VERIFIED,  // ten read-backs differed from the record
    };
    Q_ENUM(StoreResult)

    explicit CalibrationSession(unsigned serial, QObject* parent = nullptr);
    // Ends the grab thread, stops capture and closes the device.
    ~CalibrationSession() override;

    // ---- device -----------------------------------------------------------------------------
    // Lists the calibratable cameras on the USB bus.
    void updateBwDevList();
    const BwDeviceList& deviceList() const { return devices; }
    // Opens the micro-controller of the session's camera and loads the calibration it holds.
    // Failures are reported through cameraError; a device that did not open is dropped.
    bool initOryxMcu();
    bool hasDevice() const { return mcu != nullptr; }
    // Closes the device for good (the dialog is being left); does nothing the second time.
    void closeDevice();
    // The device could not be opened or has been closed.
    bool isClosed() const { return mcuClosed; }

    // ---- grab thread ------------------------------------------------------------------------
    // Starts capture and the grab thread, opening the device first if there is none. True when
    // the thread runs.
    bool startAcquisition();
    // Stops capture and ends the grab thread.
    void stopAcquisition();
    bool isGrabbing() const { return threadRunning.load(); }
    const LiveReading& reading() const { return live; }

    // ---- samples and fit --------------------------------------------------------------------
    // While collecting, every new sample joins the set; the set stays across stop and start.
    void startCollecting() { acquiring = true; }
    // Ends collecting with a fit of the whole set; its result is to be stored, fitted or not.
    void stopCollecting();
    // Collecting could not start: nothing is collected and nothing is to be stored.
    void abandonCollecting();
    bool isAcquiring() const { return acquiring; }
    const MagSampleSet& samples() const { return sampleSet; }
    void clearSamples() { sampleSet.clear(); }
    // Fits the samples; a fit that succeeds becomes the correction to store.
    void calibrateData();
    // The timer's throttled refit while collecting; true when one was made.
    bool refitIfDue();
    bool hasCalibrationToStore() const { return calibToStore; }
    void discardCalibration() { calibToStore = false; }

    // ---- EEPROM -----------------------------------------------------------------------------
    // Reads the device's calibration into the correction.
    bool loadCalibData();
    // Writes the correction to the device and reads it back until it matches, ten times at most.
    StoreResult saveCalibData();

signals:
    void samplesAdded(int total);
    // The headings, the status or the rate changed.
    void readingChanged();
    // A fit succeeded: new correction, new corrected samples.
    void calibrationFitted();
    void cameraError(QString message);
    // From the grab thread to the session's own thread: the mailbox has news.
    void mailboxFilled(QPrivateSignal);

private:
    // One new sample as the grab thread read it.
    struct Grabbed {
        MagAxes field;
        LiveReading reading;
    };
    // What the grab thread hands over; guarded by its lock.
    struct Mailbox {
        std::mutex lock;
        std::vector<Grabbed> samples;
        bool readFailed = false;
    };

    void magDataGrabThread(std::shared_ptr<bw::ORYXmcu> device);
    static Grabbed grab(bw::ORYXmcu& device, const bw::_imu_reader_data& record, double timeMs,
                        double sampleRate);
    void post(const Grabbed& sample);
    void postReadFailure();
    void takeMail();
    void take(const Grabbed& sample);
    void resumeCapture(bw::ORYXmcu& device);
    StoreResult writeAndVerify(bw::_mag_calib_data record);

    const unsigned serial;
    BwDeviceList devices;
    std::shared_ptr<bw::ORYXmcu> mcu;
    bool mcuClosed = false;

    std::thread grabThread;
    // Shared with the grab thread: the device (its own lock), the mailbox and these two flags.
    std::atomic<bool> threadRunning{false};
    std::atomic<bool> stopRequested{false};
    Mailbox mailbox;

    bool acquiring = false;
    bool calibToStore = false;
    LiveReading live;
    MagSampleSet sampleSet;
    std::shared_ptr<OrientCount> orientCount;
};
