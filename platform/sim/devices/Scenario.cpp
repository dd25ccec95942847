// Scenario text, as read from the environment variable ORYX_SIM.
//
//   ORYX_SIM="model=ORYX_D motion=tumbling hard_iron=20,-12,5 soft_iron=1.1,0.9,1.0;
//             model=ORYX_E id=1 plug=5 unplug=30 faults=temp_left,open"
//
// Cameras are separated by ';'. A camera is a list of key=value words separated by blanks
// (spaces, tabs or line breaks), in any order, each key at most once. Blank cameras (such as after
// a trailing ';') are ignored. An empty or blank text gives the default scenario: one ORYX_D with
// gentle motion. Cameras are numbered from 1 in error messages; "position" below counts from 0.
//
//   model=NAME          ORYX, ORYX_B, ORYX_C, ORYX_D, ORYX_E, ORYX_F, ORYX_SOLO_A, ORYX_SOLO_B
//                       (any case), or the model code 0, 1, 2, 3, 4, 5, 30, 31. Default ORYX_D.
//   serial=N            serial number, 1 to 4294967295; serials must differ between cameras.
//                       Default: derived from the model and the position; models 1 to 3 get
//                       eight digits led by the model code (e.g. 31000017 for the first ORYX_D).
//   id=N                camera id on the GMSL bus, 0 or more. Default: the position.
//   motion=MOTION       still (on a table), gentle (held in a hand, now and then set down) or
//                       tumbling (turned through every orientation). Default gentle.
//   seed=N              seed of the motion and the sensor noise, 0 to 2^64-1. Default: the
//                       position + 1. Equal seeds give identical sensor streams.
//   heading=DEG         where a still or gentle camera faces, in degrees clockwise from
//                       magnetic north (90 faces east, -90 west). Default: drawn from the
//                       seed. Tumbling cameras face every way and ignore it.
//   imu_rate=N          IMU sample rate in Hz, 1 to 100000 (may have a fraction). Default 400.
//   gyro_noise=N        gyroscope white-noise density in rad/s/√Hz: one number for every axis,
//                       or X,Y,Z for the reported axes. Default 4.36e-5 (0.05 °/s at 400 Hz).
//   gyro_walk=K         gyroscope bias random walk in rad/s²/√Hz, one or three. Default 2e-5.
//   acc_noise=N         accelerometer white-noise density in m/s²/√Hz, one or three.
//                       Default 1e-3 (0.02 m/s² at 400 Hz).
//   acc_walk=K          accelerometer bias random walk in m/s³/√Hz, one or three. Default 3e-4.
//   hard_iron=X,Y,Z     hard-iron offset in µT, magnetometer axes d0,d1,d2. Default 18,-11,7.
//   soft_iron=X,Y,Z     soft-iron scale per magnetometer axis, each above 0.
//                       Default 1.06,0.95,1.01.
//   plug=S              seconds after start when the camera is plugged in, 0 or more. Default 0.
//   unplug=S            seconds after start when it is unplugged, after plug. Default: never.
//   firmware=N          camera firmware version. Default 1523.
//   sensor_firmware=N   sensor micro-controller firmware version. Default 777.
//   replay=PATH         the camera replays a recording that the viewer wrote. It stands alone: the
//                       rest of the camera's text is the path (blanks included), and the model
//                       and serial come from the file's name.
//   faults=F,F,...      faults to inject, any of:
//       mag_saturated       the magnetometer's z axis reads exactly 2048 µT
//       repeat_imu_ts       every other IMU record repeats the previous timestamp
//       imu_unavailable     the IMU reports itself unavailable
//       mag_unavailable     the magnetometer reports itself unavailable
//       baro_unavailable    the barometer reports itself unavailable
//       temp_left           reading the left onboard temperature fails
//       temp_right          reading the right onboard temperature fails
//       open                opening the camera fails
//       gpu_memory          preparing GPU memory after opening fails
//       grab                grabbing a frame fails (not a camera loss); sensors go on
//       mcu_open            opening the sensor micro-controller fails
//       mcu_read            the micro-controller's sample records come back invalid
//       eeprom_write        writing the magnetometer calibration fails
//       eeprom_readback=N   the next N EEPROM reads differ from what was written
//
// Numbers are decimal; X, Y, Z and S may have a fraction and an exponent (-12.5, 1e-3).
// A text that does not parse is rejected whole; the error names the camera and the word, e.g.
//   camera 2: unknown key "modle" in "modle=ORYX_D"
#include <algorithm>
#include <array>
#include <bw/sim/Scenario.hpp>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <set>
#include <sstream>
#include <string_view>

#include "RecordingName.h"

namespace bw::sim {
namespace {

struct FaultName {
    const char* name;
    bool Faults::*flag;
};

constexpr FaultName kFaultSwitches[] = {
    {"mag_saturated", &Faults::magSaturated},
    {"repeat_imu_ts", &Faults::repeatedImuTimestamps},
    {"imu_unavailable", &Faults::imuUnavailable},
    {"mag_unavailable", &Faults::magUnavailable},
    {"baro_unavailable", &Faults::baroUnavailable},
    {"temp_left", &Faults::temperatureLeftFails},
    {"temp_right", &Faults::temperatureRightFails},
    {"open", &Faults::openFails},
    {"gpu_memory", &Faults::gpuMemoryFails},
    {"grab", &Faults::grabFails},
    {"mcu_open", &Faults::mcuOpenFails},
    {"mcu_read", &Faults::mcuReadFails},
    {"eeprom_write", &Faults::eepromWriteFails},
};
constexpr std::string_view kEepromReadback = "eeprom_readback";
constexpr std::string_view kReplayKey = "replay";

const char* const kKeys[] = {"model",    "serial",          "id",         "motion",    "seed",
                             "heading",  "imu_rate",        "gyro_noise", "gyro_walk", "acc_noise",
                             "acc_walk", "hard_iron",       "soft_iron",  "plug",      "unplug",
                             "firmware", "sensor_firmware", "faults"};

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

bool sameIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](unsigned char x, unsigned char y) {
               return std::tolower(x) == std::tolower(y);
           });
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end == std::string_view::npos ? end : end - begin));
        if (end == std::string_view::npos) return parts;
        begin = end + 1;
    }
}

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> result;
    std::size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
        const std::size_t begin = i;
        while (i < text.size() && !std::isspace(static_cast<unsigned char>(text[i]))) ++i;
        if (i > begin) result.push_back(text.substr(begin, i - begin));
    }
    return result;
}

template <class Integer>
std::optional<Integer> parseInteger(std::string_view text) {
    Integer value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<double> parseReal(std::string_view text) {
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

// Reads the words of one camera into a DeviceConfig; the first problem found ends it.
class CameraParser {
public:
    explicit CameraParser(int position) : position_(position) {
        config_.cameraId = position;
        config_.seed = static_cast<std::uint64_t>(position) + 1;
    }

    bool parse(std::string_view text) {
        for (std::string_view word : words(text)) {
            if (!parseWord(word)) return false;
        }
        return checkPlugTimes();
    }

    DeviceConfig config() const {
        DeviceConfig complete = config_;
        if (complete.serial == 0)
            complete.serial = DeviceConfig::defaultSerial(complete.model, position_);
        return complete;
    }

    const std::string& error() const { return error_; }
    // The word that set the serial, empty when it was derived.
    const std::string& serialWord() const { return serialWord_; }

private:
    bool fail(const std::string& message) {
        error_ = "camera " + std::to_string(position_ + 1) + ": " + message;
        return false;
    }

    bool parseWord(std::string_view word) {
        const std::size_t equals = word.find('=');
        if (equals == std::string_view::npos) return fail("missing '=' in " + quoted(word));
        const std::string_view key = word.substr(0, equals);
        const std::string_view value = word.substr(equals + 1);
        if (key.empty()) return fail("missing key in " + quoted(word));
        if (key == kReplayKey) {
            return fail("replay=PATH stands alone in its camera, without other keys");
        }
        if (std::find(std::begin(kKeys), std::end(kKeys), key) == std::end(kKeys)) {
            return fail("unknown key " + quoted(key) + " in " + quoted(word));
        }
        if (!seen_.insert(std::string(key)).second) {
            return fail("key " + quoted(key) + " given twice in " + quoted(word));
        }
        if (value.empty()) return fail("missing value in " + quoted(word));
        word_ = word;
        return apply(key, value);
    }

    bool apply(std::string_view key, std::string_view value) {
        if (key == "model") return setModel(value);
        if (key == "serial") return setSerial(value);
        if (key == "id") return setUnsigned(value, config_.cameraId);
        if (key == "motion") return setMotion(value);
        if (key == "seed") return setSeed(value);
        if (key == "heading") return setHeading(value);
        if (key == "imu_rate") return setImuRate(value);
        if (key == "gyro_noise") return setNoise(value, config_.gyroNoise);
        if (key == "gyro_walk") return setNoise(value, config_.gyroWalk);
        if (key == "acc_noise") return setNoise(value, config_.accNoise);
        if (key == "acc_walk") return setNoise(value, config_.accWalk);
        if (key == "hard_iron") return setTriple(value, config_.hardIronOffset, false);
        if (key == "soft_iron") return setTriple(value, config_.softIronScale, true);
        if (key == "plug") return setTime(value, config_.plugAt);
        if (key == "unplug") {
            double at = 0.0;
            if (!setTime(value, at)) return false;
            config_.unplugAt = at;
            unplugWord_ = word_;
            return true;
        }
        if (key == "firmware") return setUnsigned(value, config_.cameraFirmware);
        if (key == "sensor_firmware") return setUnsigned(value, config_.sensorFirmware);
        return setFaults(value);
    }

    bool badNumber(std::string_view value) {
        return fail("bad number " + quoted(value) + " in " + quoted(word_));
    }

    bool setModel(std::string_view value) {
        const auto code = parseInteger<int>(value);
        for (const MODEL model : kModels) {
            if (code ? *code == static_cast<int>(model)
                     : sameIgnoringCase(value, toString(model))) {
                config_.model = model;
                return true;
            }
        }
        return fail("unknown model " + quoted(value) + " in " + quoted(word_));
    }

    bool setSerial(std::string_view value) {
        const auto serial = parseInteger<unsigned int>(value);
        if (!serial) return badNumber(value);
        if (*serial == 0) return fail("serial must not be 0 in " + quoted(word_));
        config_.serial = *serial;
        serialWord_ = word_;
        return true;
    }

    template <class Target>
    bool setUnsigned(std::string_view value, Target& target) {
        const auto number = parseInteger<unsigned int>(value);
        if (!number || *number > static_cast<unsigned int>(std::numeric_limits<Target>::max())) {
            return badNumber(value);
        }
        target = static_cast<Target>(*number);
        return true;
    }

    bool setMotion(std::string_view value) {
        const auto motion = motionProfileFromString(std::string(value));
        if (!motion) return fail("unknown motion " + quoted(value) + " in " + quoted(word_));
        config_.motion = *motion;
        return true;
    }

    bool setSeed(std::string_view value) {
        const auto seed = parseInteger<std::uint64_t>(value);
        if (!seed) return badNumber(value);
        config_.seed = *seed;
        return true;
    }

    bool setHeading(std::string_view value) {
        const auto degrees = parseReal(value);
        if (!degrees) return badNumber(value);
        config_.headingDeg = *degrees;
        return true;
    }

    bool setImuRate(std::string_view value) {
        const auto rate = parseReal(value);
        if (!rate) return badNumber(value);
        if (*rate < DeviceConfig::kMinImuRateHz || *rate > DeviceConfig::kMaxImuRateHz) {
            return fail("IMU rate out of range (1 to 100000 Hz) in " + quoted(word_));
        }
        config_.imuRateHz = *rate;
        return true;
    }

    // One number for all three axes, or three comma-separated ones; none negative.
    bool setNoise(std::string_view value, Vector3<double>& target) {
        const std::vector<std::string_view> parts = split(value, ',');
        if (parts.size() != 1 && parts.size() != 3) {
            return fail("expected 1 or 3 comma-separated numbers in " + quoted(word_));
        }
        Vector3<double> noise;
        for (int i = 0; i < 3; ++i) {
            const std::string_view part = parts[parts.size() == 1 ? 0 : std::size_t(i)];
            const auto number = parseReal(part);
            if (!number) return badNumber(part);
            if (*number < 0.0) return fail("negative noise in " + quoted(word_));
            noise[i] = *number;
        }
        target = noise;
        return true;
    }

    bool setTriple(std::string_view value, Vector3<float>& target, bool positive) {
        const std::vector<std::string_view> parts = split(value, ',');
        if (parts.size() != 3) {
            return fail("expected 3 comma-separated numbers in " + quoted(word_));
        }
        Vector3<float> triple;
        for (int i = 0; i < 3; ++i) {
            const auto number = parseReal(parts[i]);
            if (!number) return badNumber(parts[i]);
            if (positive && *number <= 0.0) {
                return fail("soft iron scale " + quoted(parts[i]) + " is not positive in " +
                            quoted(word_));
            }
            triple[i] = static_cast<float>(*number);
        }
        target = triple;
        return true;
    }

    bool setTime(std::string_view value, double& target) {
        const auto seconds = parseReal(value);
        if (!seconds) return badNumber(value);
        if (*seconds < 0.0) return fail("negative time in " + quoted(word_));
        target = *seconds;
        return true;
    }

    bool setFaults(std::string_view value) {
        for (std::string_view name : split(value, ',')) {
            if (!setFault(name)) return false;
        }
        return true;
    }

    bool setFault(std::string_view name) {
        for (const FaultName& fault : kFaultSwitches) {
            if (name == fault.name) {
                config_.faults.*fault.flag = true;
                return true;
            }
        }
        if (name.substr(0, kEepromReadback.size()) == kEepromReadback) {
            const std::string_view rest = name.substr(kEepromReadback.size());
            if (rest.empty() || rest.front() != '=') {
                return fail("missing count (eeprom_readback=N) in " + quoted(word_));
            }
            const auto count = parseInteger<int>(rest.substr(1));
            if (!count || *count < 0) return badNumber(rest.substr(1));
            config_.faults.eepromBadReads = *count;
            return true;
        }
        if (name.empty()) return fail("empty fault name in " + quoted(word_));
        return fail("unknown fault " + quoted(name) + " in " + quoted(word_));
    }

    bool checkPlugTimes() {
        if (!config_.unplugAt || *config_.unplugAt > config_.plugAt) return true;
        std::ostringstream message;
        message << "unplug time in " << quoted(unplugWord_) << " is not after the plug time ("
                << config_.plugAt << " s)";
        return fail(message.str());
    }

    int position_;
    DeviceConfig config_;
    std::set<std::string> seen_;
    std::string word_;  // the word being applied, for messages
    std::string serialWord_;
    std::string unplugWord_;
    std::string error_;
};

bool isBlank(std::string_view text) { return words(text).empty(); }

// Serials identify cameras: no two may share one, whether given or derived.
std::string findDuplicateSerial(const std::vector<DeviceConfig>& cameras,
                                const std::vector<std::string>& serialWords) {
    for (std::size_t j = 1; j < cameras.size(); ++j) {
        for (std::size_t i = 0; i < j; ++i) {
            if (cameras[i].serial != cameras[j].serial) continue;
            const std::string origin =
                serialWords[j].empty() ? " (derived)" : " in " + quoted(serialWords[j]);
            return "camera " + std::to_string(j + 1) + ": serial " +
                   std::to_string(cameras[j].serial) + origin + " is already used by camera " +
                   std::to_string(i + 1);
        }
    }
    return {};
}

// "replay=PATH": a camera that replays the recording at PATH.
std::optional<DeviceConfig> replayedCamera(std::string_view segment, int position) {
    const std::vector<std::string_view> parts = words(segment);
    if (parts.empty() || parts.front().substr(0, kReplayKey.size() + 1) != "replay=")
        return std::nullopt;
    const std::size_t start = segment.find('=') + 1;
    std::string_view path = segment.substr(start);
    while (!path.empty() && std::isspace(static_cast<unsigned char>(path.back())))
        path.remove_suffix(1);
    DeviceConfig camera;
    camera.recording = std::string(path);
    camera.cameraId = position;
    camera.serial = DeviceConfig::defaultSerial(camera.model, position);
    if (const auto named = recording::cameraNamedIn(camera.recording)) {
        camera.model = modelNamed(named->model).value_or(camera.model);
        if (named->serial != 0) camera.serial = named->serial;
    }
    return camera;
}

}  // namespace

ScenarioParseResult parseScenario(const std::string& text) {
    ScenarioParseResult result;
    std::vector<std::string> serialWords;
    for (std::string_view segment : split(text, ';')) {
        if (isBlank(segment)) continue;
        const int position = static_cast<int>(result.cameras.size());
        if (std::optional<DeviceConfig> replayed = replayedCamera(segment, position)) {
            result.cameras.push_back(*replayed);
            serialWords.emplace_back();
            continue;
        }
        CameraParser parser(position);
        if (!parser.parse(segment)) {
            result.error = parser.error();
            result.cameras.clear();
            return result;
        }
        result.cameras.push_back(parser.config());
        serialWords.push_back(parser.serialWord());
    }
    if (result.cameras.empty()) {  // only separators
        result.ok = true;
        result.cameras = defaultScenario();
        return result;
    }
    result.error = findDuplicateSerial(result.cameras, serialWords);
    result.ok = result.error.empty();
    if (!result.ok) result.cameras.clear();
    return result;
}

std::vector<DeviceConfig> defaultScenario() {
    DeviceConfig camera;
    camera.model = MODEL::ORYX_D;
    camera.motion = MotionProfile::Gentle;
    camera.cameraId = 0;
    camera.seed = 1;
    camera.serial = DeviceConfig::defaultSerial(camera.model, 0);
    return {camera};
}

std::vector<DeviceConfig> scenarioFromEnvironment() {
    const char* text = std::getenv(kScenarioVariable);
    if (text == nullptr) return defaultScenario();
    const ScenarioParseResult result = parseScenario(text);
    if (result.ok) return result.cameras;
    std::fprintf(stderr, "%s: %s; using the default scenario (one ORYX_D, gentle motion)\n",
                 kScenarioVariable, result.error.c_str());
    return defaultScenario();
}

}  // namespace bw::sim
