// The simulated USB/GMSL bus: the process-wide set of virtual cameras that the bw API sees.
// The viewer never touches it; tests and the application's start-up use it to decide which
// cameras exist, to pull and push cables and to switch faults on. Thread-safe.
#pragma once

#include <bw/sim/DeviceConfig.hpp>
#include <memory>
#include <optional>
#include <vector>

namespace bw::sim {

class Bus {
public:
    // The bus, built on first use from the ORYX_SIM scenario (one ORYX_D by default).
    static Bus& instance();

    // Replaces every camera by the given ones (empty: no cameras). Serials of 0 are completed
    // with DeviceConfig::defaultSerial(model, index in the list). The plug schedule (plugAt,
    // unplugAt) counts from now on Clock, so switch the clock to virtual time before loading.
    // Throws std::invalid_argument when two cameras share a serial.
    void load(const std::vector<DeviceConfig>& cameras);

    // Adds one camera (its plug schedule counts from the last load) and returns its serial.
    // Throws std::invalid_argument when the serial is already on the bus.
    unsigned plug(DeviceConfig camera);

    // Pulls the cable: open cameras report CAMERA_NOT_DETECTED and must be reopened after a
    // replug. False when the serial is unknown or already unplugged.
    bool unplug(unsigned serial);
    // Plugs a known camera back in, with its EEPROM and sample history intact. False when the
    // serial is unknown or already plugged.
    bool replug(unsigned serial);
    bool isPlugged(unsigned serial);

    // Faults of one camera; the setter returns false for an unknown serial. The getter shows
    // counters as they stand (eepromBadReads counts down).
    bool setFaults(unsigned serial, const Faults& faults);
    std::optional<Faults> faults(unsigned serial);

    // The camera's description with its serial completed and its present faults.
    std::optional<DeviceConfig> config(unsigned serial);

    // Every camera on the bus, plugged or not, in load order.
    std::vector<unsigned> serials();

    // Makes the camera's micro-controller report HID product id 0, as some firmware does;
    // readers must then derive it from the serial. False for an unknown serial.
    bool setHidProductIdZero(unsigned serial, bool zero);

    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;
    ~Bus();

private:
    Bus();
    friend struct BusAccess;
    struct State;
    std::unique_ptr<State> s_;
};

}  // namespace bw::sim
