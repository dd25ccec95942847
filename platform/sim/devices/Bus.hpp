// The device objects' view of the bus: which virtual devices exist. The public control surface
// is bw/sim/Bus.hpp.
#pragma once

#include <memory>
#include <vector>

#include "VirtualDevice.hpp"

namespace bw::sim {

struct BusAccess {
    // Every device on the bus, plugged or not, in load order. A snapshot: devices stay valid
    // after a reload, then simply unplugged.
    static std::vector<std::shared_ptr<VirtualDevice>> devices();
    // Null when no device has that serial.
    static std::shared_ptr<VirtualDevice> find(unsigned serial);
};

}  // namespace bw::sim
