#include "RecordingName.h"

#include <charconv>
#include <string_view>

namespace recording {

namespace {

constexpr std::string_view kSuffix = "-ORYXSensorsData.csv";
constexpr std::string_view kSerialPrefix = "-sn_";
constexpr std::size_t kDateTimeLength = 15;  // yyyyMMdd_HHmmss

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool allDigits(std::string_view text) {
    for (const char c : text) {
        if (!isDigit(c)) return false;
    }
    return !text.empty();
}

bool isDateTime(std::string_view text) {
    return text.size() == kDateTimeLength && text[8] == '_' && allDigits(text.substr(0, 8)) &&
           allDigits(text.substr(9));
}

// Model texts as the SDK writes them ("ORYX_D", "ORYX_SOLO_A"): letters, digits, underscores.
bool isModelText(std::string_view text) {
    for (const char c : text) {
        if (!isDigit(c) && !(c >= 'A' && c <= 'Z') && !(c >= 'a' && c <= 'z') && c != '_')
            return false;
    }
    return !text.empty();
}

std::optional<unsigned> serialFrom(std::string_view text) {
    unsigned serial = 0;
    if (!allDigits(text)) return std::nullopt;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), serial);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return serial;
}

}  // namespace

std::string fileNameOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// yyyyMMdd_HHmmss-<model>-sn_<serial>-ORYXSensorsData.csv, piece by piece from the end.
std::optional<NamedCamera> cameraNamedIn(const std::string& path) {
    const std::string name = fileNameOf(path);
    std::string_view rest(name);
    if (rest.size() <= kSuffix.size() || rest.substr(rest.size() - kSuffix.size()) != kSuffix)
        return std::nullopt;
    rest.remove_suffix(kSuffix.size());
    const std::size_t serialStart = rest.rfind(kSerialPrefix);
    if (serialStart == std::string_view::npos) return std::nullopt;
    const std::optional<unsigned> serial =
        serialFrom(rest.substr(serialStart + kSerialPrefix.size()));
    rest = rest.substr(0, serialStart);
    if (!serial || rest.size() <= kDateTimeLength + 1 ||
        !isDateTime(rest.substr(0, kDateTimeLength)) || rest[kDateTimeLength] != '-')
        return std::nullopt;
    const std::string_view model = rest.substr(kDateTimeLength + 1);
    if (!isModelText(model)) return std::nullopt;
    return NamedCamera{std::string(model), *serial};
}

}  // namespace recording
