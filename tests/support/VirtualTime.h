// Spans of the simulator's virtual clock, which counts nanoseconds.
#pragma once

#include <cstdint>

namespace virtualtime {

constexpr std::uint64_t kMs = 1'000'000ull;
constexpr std::uint64_t kSecond = 1000 * kMs;

}  // namespace virtualtime
