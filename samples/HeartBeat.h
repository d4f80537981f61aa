#pragma once

#include <vector>

#include "Signals.h"

/// The waves of a heart beat, as two leads see them.
namespace quillon::samples {

/// Amplitude in mV, time after the beat's start in s and width in s.
struct Wave {
    double lead1;
    double lead2;
    double at;
    double width;
};

inline constexpr Wave kBeat[] = {{0.09, 0.15, 0.10, 0.022},
                                 {-0.06, -0.10, 0.215, 0.009},
                                 {0.75, 1.15, 0.245, 0.011},
                                 {-0.12, -0.22, 0.275, 0.010},
                                 {0.20, 0.30, 0.480, 0.045}};

/// Adds a beat that starts at `start` (s) to a lead in mV.
template <typename Waves>
void AddBeat(std::vector<double>& lead, double rate, double start, const Waves& waves, double Wave::*amplitude) {
    for (const Wave& wave : waves) {
        const auto from = static_cast<std::size_t>(std::max(0.0, start + wave.at - 6.0 * wave.width) * rate);
        const auto to = static_cast<std::size_t>((start + wave.at + 6.0 * wave.width) * rate);
        for (std::size_t i = from; i < std::min(to, lead.size()); ++i) {
            lead[i] += wave.*amplitude * Bell(static_cast<double>(i) / rate, start + wave.at, wave.width);
        }
    }
}

}  // namespace quillon::samples
