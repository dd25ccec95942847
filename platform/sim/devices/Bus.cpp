#include "Bus.hpp"

#include <algorithm>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <bw/sim/Scenario.hpp>
#include <mutex>
#include <stdexcept>
#include <string>

namespace bw::sim {

struct Bus::State {
    std::mutex mutex;
    std::vector<std::shared_ptr<VirtualDevice>> devices;
    std::uint64_t loadedAtNs = 0;

    std::shared_ptr<VirtualDevice> find(unsigned serial) const {
        for (const auto& device : devices) {
            if (device->serial() == serial) {
                return device;
            }
        }
        return nullptr;
    }

    bool has(unsigned serial) const { return find(serial) != nullptr; }

    std::shared_ptr<VirtualDevice> lockedFind(unsigned serial) {
        std::lock_guard<std::mutex> lock(mutex);
        return find(serial);
    }

    // The first default serial from index on that nobody uses yet.
    unsigned freeDefaultSerial(MODEL model, int index) const {
        unsigned serial = DeviceConfig::defaultSerial(model, index);
        while (has(serial)) {
            serial = DeviceConfig::defaultSerial(model, ++index);
        }
        return serial;
    }
};

namespace {

[[noreturn]] void throwDuplicate(unsigned serial) {
    throw std::invalid_argument("serial " + std::to_string(serial) + " is already on the bus");
}

}  // namespace

Bus& Bus::instance() {
    static Bus bus;
    return bus;
}

Bus::Bus() : s_(std::make_unique<State>()) { load(scenarioFromEnvironment()); }

Bus::~Bus() = default;

void Bus::load(const std::vector<DeviceConfig>& cameras) {
    State fresh;
    fresh.loadedAtNs = Clock::nowNs();
    for (std::size_t i = 0; i < cameras.size(); ++i) {
        DeviceConfig config = cameras[i];
        if (config.serial == 0) {
            config.serial = fresh.freeDefaultSerial(config.model, static_cast<int>(i));
        } else if (fresh.has(config.serial)) {
            throwDuplicate(config.serial);
        }
        fresh.devices.push_back(
            std::make_shared<VirtualDevice>(config, fresh.loadedAtNs, fresh.loadedAtNs));
    }

    std::vector<std::shared_ptr<VirtualDevice>> old;
    {
        std::lock_guard<std::mutex> lock(s_->mutex);
        old.swap(s_->devices);
        s_->devices = std::move(fresh.devices);
        s_->loadedAtNs = fresh.loadedAtNs;
    }
    // Camera objects may still hold the old devices: to them the cameras are gone.
    for (const auto& device : old) {
        device->lock()->pullOut();
    }
}

unsigned Bus::plug(DeviceConfig camera) {
    std::lock_guard<std::mutex> lock(s_->mutex);
    if (camera.serial == 0) {
        camera.serial = s_->freeDefaultSerial(camera.model, static_cast<int>(s_->devices.size()));
    } else if (s_->has(camera.serial)) {
        throwDuplicate(camera.serial);
    }
    s_->devices.push_back(std::make_shared<VirtualDevice>(camera, s_->loadedAtNs, Clock::nowNs()));
    return camera.serial;
}

bool Bus::unplug(unsigned serial) {
    const auto device = s_->lockedFind(serial);
    if (!device) {
        return false;
    }
    auto state = device->lock();
    const bool was = state->plugged;
    state->pullOut();
    return was;
}

bool Bus::replug(unsigned serial) {
    const auto device = s_->lockedFind(serial);
    if (!device) {
        return false;
    }
    auto state = device->lock();
    const bool was = state->plugged;
    state->plugIn();
    return !was;
}

bool Bus::isPlugged(unsigned serial) {
    const auto device = s_->lockedFind(serial);
    return device && device->lock()->plugged;
}

bool Bus::setFaults(unsigned serial, const Faults& faults) {
    const auto device = s_->lockedFind(serial);
    if (!device) {
        return false;
    }
    device->lock()->faults = faults;
    return true;
}

std::optional<Faults> Bus::faults(unsigned serial) {
    const auto device = s_->lockedFind(serial);
    if (!device) {
        return std::nullopt;
    }
    return device->lock()->faults;
}

std::optional<DeviceConfig> Bus::config(unsigned serial) {
    const auto device = s_->lockedFind(serial);
    if (!device) {
        return std::nullopt;
    }
    auto state = device->lock();
    DeviceConfig config = state->config();
    config.faults = state->faults;
    return config;
}

std::vector<unsigned> Bus::serials() {
    std::vector<unsigned> out;
    std::lock_guard<std::mutex> lock(s_->mutex);
    for (const auto& device : s_->devices) {
        out.push_back(device->serial());
    }
    return out;
}

bool Bus::setHidProductIdZero(unsigned serial, bool zero) {
    const auto device = s_->lockedFind(serial);
    if (!device) {
        return false;
    }
    device->lock()->hidProductIdZero = zero;
    return true;
}

std::vector<std::shared_ptr<VirtualDevice>> BusAccess::devices() {
    Bus& bus = Bus::instance();
    std::lock_guard<std::mutex> lock(bus.s_->mutex);
    return bus.s_->devices;
}

std::shared_ptr<VirtualDevice> BusAccess::find(unsigned serial) {
    return Bus::instance().s_->lockedFind(serial);
}

}  // namespace bw::sim
