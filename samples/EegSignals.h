#pragma once

#include <array>
#include <vector>

#include "EegEvents.h"
#include "Signals.h"

/// What the 19 electrodes of the sample EEG see.
namespace quillon::samples {

struct Electrode {
    const char* label;
    double x;       ///< to the right, the head's radius is 1
    double y;       ///< to the front
    double offset;  ///< uV, of the electrode's contact
};

inline constexpr std::array<Electrode, 19> kElectrodes{{{"EEG Fp1", -0.31, 0.95, 112.0},
                                                        {"EEG Fp2", 0.31, 0.95, -64.0},
                                                        {"EEG F7", -0.81, 0.59, -205.0},
                                                        {"EEG F3", -0.42, 0.50, 38.0},
                                                        {"EEG Fz", 0.0, 0.45, 171.0},
                                                        {"EEG F4", 0.42, 0.50, -17.0},
                                                        {"EEG F8", 0.81, 0.59, 263.0},
                                                        {"EEG T7", -1.0, 0.0, -148.0},
                                                        {"EEG C3", -0.50, 0.0, 84.0},
                                                        {"EEG Cz", 0.0, 0.0, -9.0},
                                                        {"EEG C4", 0.50, 0.0, -96.0},
                                                        {"EEG T8", 1.0, 0.0, 55.0},
                                                        {"EEG P7", -0.81, -0.59, 310.0},
                                                        {"EEG P3", -0.42, -0.50, -41.0},
                                                        {"EEG Pz", 0.0, -0.45, 126.0},
                                                        {"EEG P4", 0.42, -0.50, 23.0},
                                                        {"EEG P8", 0.81, -0.59, -287.0},
                                                        {"EEG O1", -0.31, -0.95, 67.0},
                                                        {"EEG O2", 0.31, -0.95, -120.0}}};

/// Share of a source at a place that the electrode sees, 0 to 1.
inline double Near(const Electrode& electrode, double x, double y, double width) {
    return Bell(std::hypot(electrode.x - x, electrode.y - y), 0.0, width);
}

/// The same for a pair of sources, on the left and on the right.
inline double NearPair(const Electrode& electrode, double x, double y, double width) {
    return std::max(Near(electrode, -x, y, width), Near(electrode, x, y, width));
}

/// Noise of every electrode in uV. A source lies under each of them and is seen by its neighbours too.
inline std::vector<std::vector<double>> EegBackground(double rate, std::size_t count) {
    constexpr double kWidth = 0.3;
    std::vector<std::vector<double>> channels(kElectrodes.size(), std::vector<double>(count));
    std::array<double, kElectrodes.size()> sizes{};
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        double power = 0.0;
        for (const Electrode& source : kElectrodes)
            power += std::pow(Near(kElectrodes[i], source.x, source.y, kWidth), 2.0);
        sizes[i] = 9.0 / std::sqrt(power);
    }
    std::vector<double> noise(count);
    for (std::size_t source = 0; source < kElectrodes.size(); ++source) {
        PinkNoise pink(source + 1, rate);
        for (double& value : noise) value = pink.Next();
        for (std::size_t i = 0; i < channels.size(); ++i) {
            const double share = Near(kElectrodes[i], kElectrodes[source].x, kElectrodes[source].y, kWidth);
            if (share < 0.02) continue;
            for (std::size_t at = 0; at < count; ++at) channels[i][at] += sizes[i] * share * noise[at];
        }
    }
    return channels;
}

/// The rhythm at the back of the head. It swells and fades, together at all electrodes, and nearly stops while the eyes
/// are open.
struct AlphaRhythm {
    std::vector<double> turn;
    std::vector<double> loudness;  ///< about 0 to 1
};

inline AlphaRhythm MakeAlphaRhythm(double rate, std::size_t count) {
    AlphaRhythm alpha;
    Random random(5);
    double closed = 0.0;
    double swell = 0.7;
    double turn = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double time = static_cast<double>(i) / rate;
        // The lids take a moment.
        const bool eyesClosed = (time > 20.4 && time < 80.0) || (time > 120.5 && time < 200.0);
        closed += ((eyesClosed ? 1.0 : 0.15) - closed) / (0.4 * rate);
        swell += ((0.75 - swell) / 1.2 + 7.5 * random.Normal()) / rate;
        swell = std::clamp(swell, 0.1, 1.4);
        turn += (10.1 + 0.35 * std::sin(kTurn * 0.21 * time)) / rate;
        alpha.turn.push_back(turn);
        alpha.loudness.push_back(closed * swell);
    }
    return alpha;
}

/// `channel` holds the background and gets what the electrode sees of everything else, in uV.
inline void AddEegSignals(std::vector<double>& channel, const Electrode& electrode, std::uint64_t seed, double rate,
                          const AlphaRhythm& alpha, const std::vector<EegEvent>& events) {
    Random random(seed + 100);
    const double alphaSize = 4.0 + 36.0 * NearPair(electrode, 0.3, -1.0, 0.55);
    // Rhythms spread from the back to the front.
    const double lag = 0.04 * electrode.x + 0.12 * electrode.y;
    // Sweat at the front drifts, and the mains come in at the right side: what filters are there for.
    const double drift = 4.0 + 45.0 * NearPair(electrode, 0.42, 0.7, 0.5);
    const double mains = 0.8 + 11.0 * Near(electrode, 0.7, -0.2, 0.5);
    for (std::size_t i = 0; i < channel.size(); ++i) {
        const double time = static_cast<double>(i) / rate;
        const double theta = 4.0 * std::sin(kTurn * (5.7 * time + lag)) * (0.6 + 0.4 * std::sin(kTurn * 0.13 * time));
        channel[i] += electrode.offset + alphaSize * alpha.loudness[i] * std::sin(kTurn * (alpha.turn[i] + lag)) +
                      theta + 1.3 * random.Normal() + mains * std::sin(kTurn * 50.0 * time) +
                      drift * std::sin(kTurn * (0.047 * time + 0.3 * electrode.x)) +
                      0.6 * drift * std::sin(kTurn * (0.109 * time + electrode.y));
    }
    const double blink = 130.0 * NearPair(electrode, 0.31, 0.95, 0.4);
    const double spike = 90.0 * Near(electrode, -0.45, -0.3, 0.35);
    const double muscle = 40.0 * NearPair(electrode, 0.95, 0.1, 0.4);
    double whiteBefore = 0.0;
    for (const EegEvent& event : events) {
        const auto from = static_cast<std::size_t>(std::max(0.0, event.time - 0.5) * rate);
        const std::size_t to = std::min(channel.size(), static_cast<std::size_t>((event.time + 1.0) * rate));
        const double strength = 1.0 + 0.25 * std::sin(7.0 * event.time);
        for (std::size_t i = from; i < to; ++i) {
            const double time = static_cast<double>(i) / rate - event.time;
            if (event.text == "Blink") {
                channel[i] += strength * blink * (Bell(time, 0.15, 0.06) - 0.2 * Bell(time, 0.4, 0.1));
            } else if (event.text == "Spike") {
                channel[i] -= spike * (Bell(time, 0.03, 0.012) - 0.45 * Bell(time, 0.2, 0.07));
            } else if (event.text == "Muscle") {
                // The difference leaves the fast part of the noise.
                const double white = random.Normal();
                channel[i] += 0.7 * strength * muscle * (white - whiteBefore) * Bell(time, 0.45, 0.16);
                whiteBefore = white;
            }
        }
    }
}

}  // namespace quillon::samples
