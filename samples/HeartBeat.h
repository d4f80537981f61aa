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

/// Two leads in mV, and where their beats are.
struct HeartLeads {
    struct Beat {
        double start = 0.0;  ///< s
        bool premature = false;
    };
    std::vector<double> lead1;
    std::vector<double> lead2;
    std::vector<Beat> beats;
};

/// A sinus rhythm that breathing changes, with a premature beat of a ventricle now and then.
inline HeartLeads BeatingHeart(double rate, std::size_t count, Random& random) {
    // Wide, without the first wave, a turned last one.
    constexpr Wave kPremature[] = {{0.9, 1.4, 0.23, 0.035}, {-0.35, -0.5, 0.33, 0.04}, {-0.25, -0.4, 0.50, 0.06}};
    HeartLeads heart{std::vector<double>(count), std::vector<double>(count), {}};
    const auto addBeat = [&](double start, const auto& waves, bool premature) {
        AddBeat(heart.lead1, rate, start, waves, &Wave::lead1);
        AddBeat(heart.lead2, rate, start, waves, &Wave::lead2);
        heart.beats.push_back({start, premature});
    };
    double start = 0.2;
    for (int beat = 1; start < static_cast<double>(count) / rate; ++beat) {
        // Faster when breathing in, slower when breathing out.
        const double gap = 0.86 + 0.05 * std::sin(kTurn * 0.25 * start) + 0.03 * std::sin(kTurn * 0.011 * start) +
                           0.012 * random.Normal();
        addBeat(start, kBeat, false);
        if (beat % 71 == 40) {
            addBeat(start + 0.55 * gap, kPremature, true);
            start += 1.0 * gap;  // the pause that follows
        }
        start += gap;
    }
    return heart;
}

}  // namespace quillon::samples
