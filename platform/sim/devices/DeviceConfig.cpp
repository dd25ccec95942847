#include <algorithm>
#include <bw/sim/DeviceConfig.hpp>
#include <cctype>

namespace bw::sim {
namespace {

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

constexpr unsigned int kModelDigit = 10'000'000;
// Stereo serials: model digit, then 1, then six digits spread out by a prime step so that
// neighbouring cameras do not get neighbouring numbers. The step is coprime with the range,
// so every index below it gets its own serial.
constexpr unsigned int kStereoSerialBase = 1'000'000;
constexpr unsigned int kStereoSerialRange = 9'000'000;
constexpr unsigned int kStereoSerialStep = 7919;
constexpr unsigned int kStereoSerialOffset = 17;
// Other models: 4xxxxxxx, never read as a stereo model code.
constexpr unsigned int kOtherSerialBase = 40'000'000;
constexpr unsigned int kOtherSerialPerModel = 100'000;

}  // namespace

const char* toString(MotionProfile profile) {
    switch (profile) {
        case MotionProfile::Still:
            return "still";
        case MotionProfile::Gentle:
            return "gentle";
        case MotionProfile::Tumbling:
            return "tumbling";
    }
    return "gentle";
}

std::optional<MotionProfile> motionProfileFromString(const std::string& text) {
    const std::string name = lowerCase(text);
    for (MotionProfile profile :
         {MotionProfile::Still, MotionProfile::Gentle, MotionProfile::Tumbling}) {
        if (name == toString(profile)) return profile;
    }
    return std::nullopt;
}

unsigned int DeviceConfig::defaultSerial(MODEL model, int index) {
    const auto code = static_cast<unsigned int>(model);
    const auto position = static_cast<unsigned long long>(std::max(index, 0));
    if (code >= 1 && code <= 3) {
        const auto spread =
            (position * kStereoSerialStep + kStereoSerialOffset) % kStereoSerialRange;
        return code * kModelDigit + kStereoSerialBase + static_cast<unsigned int>(spread);
    }
    return kOtherSerialBase + (code % 100) * kOtherSerialPerModel +
           static_cast<unsigned int>(position % kOtherSerialPerModel);
}

std::optional<MODEL> modelNamed(std::string_view name) {
    const auto sameIgnoringCase = [name](std::string_view other) {
        return name.size() == other.size() &&
               std::equal(name.begin(), name.end(), other.begin(),
                          [](unsigned char a, unsigned char b) {
                              return std::tolower(a) == std::tolower(b);
                          });
    };
    for (const MODEL model : kModels) {
        if (sameIgnoringCase(toString(model))) return model;
    }
    return std::nullopt;
}

SensorSet sensorsOf(MODEL model) {
    switch (model) {
        case MODEL::ORYX_C:
        case MODEL::ORYX_D:
        case MODEL::ORYX_SOLO_A:
        case MODEL::ORYX_SOLO_B:
            return {true, true, true};
        case MODEL::ORYX_E:
        case MODEL::ORYX_F:
            return {false, false, true};
        case MODEL::ORYX:
        case MODEL::ORYX_B:
            break;
    }
    return {};
}

}  // namespace bw::sim
