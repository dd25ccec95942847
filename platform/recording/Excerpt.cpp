#include "Excerpt.h"

#include <cstdio>

namespace recording {

namespace {

bool isControl(unsigned char c) { return c < 0x20 || c == 0x7f; }

bool continuesUtf8Character(unsigned char c) { return (c & 0xc0) == 0x80; }

// Where to cut `bytes` so that at most kMostExcerptBytes remain and no UTF-8 character is split.
std::size_t cutAt(std::string_view bytes) {
    if (bytes.size() <= kMostExcerptBytes) return bytes.size();
    std::size_t cut = kMostExcerptBytes;
    while (cut > 0 && continuesUtf8Character(static_cast<unsigned char>(bytes[cut]))) --cut;
    return cut;
}

}  // namespace

std::string excerptOf(std::string_view bytes) {
    const std::size_t cut = cutAt(bytes);
    std::string shown;
    shown.reserve(cut + 8);
    for (const char c : bytes.substr(0, cut)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\') {
            shown += "\\\\";
        } else if (isControl(byte)) {
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\x%02x", byte);
            shown += escaped;
        } else {
            shown += c;
        }
    }
    if (cut < bytes.size()) shown += "\u2026";
    return shown;
}

std::string quotedExcerptOf(std::string_view bytes) { return "\"" + excerptOf(bytes) + "\""; }

}  // namespace recording
