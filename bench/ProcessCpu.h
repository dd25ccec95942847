// Processor time of the whole process, every thread, user and system: what a benchmark costs the
// machine, which a loaded machine does not stretch as it stretches the wall time.
#pragma once

#include <sys/resource.h>

inline double processCpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}
