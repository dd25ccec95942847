// The recorder's lines as both readers split them: blanks around a field do not count, and every
// field, the last included, ends with a comma.
#pragma once

#include <string_view>

namespace recording {

inline std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

inline bool endsWithComma(std::string_view line) { return !line.empty() && line.back() == ','; }

// The last comma ends the last field; it is not the start of another one.
inline std::string_view withoutTrailingComma(std::string_view line) {
    if (endsWithComma(line)) line.remove_suffix(1);
    return line;
}

}  // namespace recording
