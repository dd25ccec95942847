#include "RecordingName.h"

#include <charconv>
#include <string_view>

namespace recording {

namespace {
constexpr std::string_view kSuffix = "-ORYXSensorsData.csv";
constexpr std::string_view kSerialPrefix = "sn_";
}  // namespace

std::string fileNameOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::optional<NamedCamera> cameraNamedIn(const std::string& path) {
    const std::string name = fileNameOf(path);
    std::string_view rest(name);
    if (rest.size() <= kSuffix.size() || rest.substr(rest.size() - kSuffix.size()) != kSuffix)
        return std::nullopt;
    rest.remove_suffix(kSuffix.size());
    // date_time-model-sn_serial; the model holds no '-'.
    const std::size_t serialStart = rest.rfind('-');
    const std::size_t modelStart = serialStart == std::string_view::npos
                                       ? std::string_view::npos
                                       : rest.rfind('-', serialStart - 1);
    if (modelStart == std::string_view::npos) return std::nullopt;
    std::string_view serialText = rest.substr(serialStart + 1);
    if (serialText.substr(0, kSerialPrefix.size()) != kSerialPrefix) return std::nullopt;
    serialText.remove_prefix(kSerialPrefix.size());
    NamedCamera camera;
    const auto [end, error] =
        std::from_chars(serialText.data(), serialText.data() + serialText.size(), camera.serial);
    if (error != std::errc() || end != serialText.data() + serialText.size()) return std::nullopt;
    camera.model = std::string(rest.substr(modelStart + 1, serialStart - modelStart - 1));
    return camera;
}

}  // namespace recording
