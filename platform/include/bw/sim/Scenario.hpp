// Scenario text: which simulated cameras exist, how they move and what goes wrong. Read from the
// environment variable ORYX_SIM at start-up.
#pragma once

#include <bw/sim/DeviceConfig.hpp>
#include <string>
#include <vector>

namespace bw::sim {

constexpr const char* kScenarioVariable = "ORYX_SIM";

struct ScenarioParseResult {
    bool ok = false;
    std::vector<DeviceConfig> cameras;  // complete (serials filled in) when ok
    std::string error;                  // names the bad part when not ok
};

ScenarioParseResult parseScenario(const std::string& text);

// One ORYX_D with gentle motion.
std::vector<DeviceConfig> defaultScenario();

// The scenario of ORYX_SIM, or the default when it is unset or empty. A text that does not
// parse is reported on standard error, naming the bad part, and the default is used.
std::vector<DeviceConfig> scenarioFromEnvironment();

}  // namespace bw::sim
