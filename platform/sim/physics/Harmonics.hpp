// Sums of sinusoids: the smooth, seeded building blocks of the simulated hand motion.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace bw::sim {

struct Harmonic {
    double amplitude = 0.0;
    double omega = 0.0;  // rad/s
    double phase = 0.0;  // rad
};

// A value and its first two time derivatives.
struct Smooth {
    double value = 0.0;
    double rate = 0.0;
    double acceleration = 0.0;
};

template <std::size_t N>
struct HarmonicSum {
    std::array<Harmonic, N> terms{};

    double at(double t) const {
        double sum = 0.0;
        for (const Harmonic& h : terms) sum += h.amplitude * std::sin(h.omega * t + h.phase);
        return sum;
    }

    Smooth withDerivatives(double t) const {
        Smooth s;
        for (const Harmonic& h : terms) {
            const double angle = h.omega * t + h.phase;
            const double sine = std::sin(angle);
            s.value += h.amplitude * sine;
            s.rate += h.amplitude * h.omega * std::cos(angle);
            s.acceleration -= h.amplitude * h.omega * h.omega * sine;
        }
        return s;
    }
};

}  // namespace bw::sim
