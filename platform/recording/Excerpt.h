// File bytes as a problem text can show them. A damaged recording may hold anything where a
// value or a column title belongs: a megabyte without a line end, NUL bytes, terminal escapes.
// A message box shows the start of it, readable.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace recording {

// The most bytes of the file an excerpt shows; longer ones end in "…".
constexpr std::size_t kMostExcerptBytes = 40;

// `bytes` with control characters and backslashes escaped ("\x00", "\\"), cut after
// kMostExcerptBytes bytes, never inside a UTF-8 character.
std::string excerptOf(std::string_view bytes);

// The excerpt in double quotes.
std::string quotedExcerptOf(std::string_view bytes);

}  // namespace recording
