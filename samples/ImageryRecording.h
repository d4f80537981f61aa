#pragma once

#include <string>
#include <vector>

#include "GdfWriter.h"
#include "Signals.h"

namespace quillon::samples {

/// Imagined movements of either hand in GDF: a rhythm of 11 Hz over the other side of the head that fades meanwhile,
/// and a respiration belt at a tenth of the rate.
inline std::string ImageryFile() {
    constexpr std::uint32_t kRate = 250;
    constexpr std::size_t kSeconds = 60;
    constexpr double kScale = 0.05;
    constexpr std::uint32_t kMicrovolt = 4275;
    constexpr std::uint32_t kPercent = 544;
    constexpr double kReach = 32767.0 * kScale;
    std::vector<GdfChannel> channels;
    for (const char* const name : {"C3", "Cz", "C4"})
        channels.push_back({name, "uV", kMicrovolt, -kReach, kReach, -32767.0, 32767.0, kRate});
    channels.push_back({"Belt", "%", kPercent, 0.0, 100.0, 0.0, 100.0, kRate / 10, 16});

    std::vector<GdfEvent> events;
    std::vector<double> left(kRate * kSeconds);  // what is imagined, 0 to 1
    std::vector<double> right(left.size());
    Random random(81);
    for (std::size_t second = 3; second + 8 < kSeconds; second += 9) {
        const bool isLeft = random.Uniform() < 0.5;
        const auto at = static_cast<std::uint32_t>(second) * kRate + 1;
        events.push_back({at, 0x0300, 0, 8 * kRate});
        events.push_back({at + kRate, 0x0312, 0, kRate});
        events.push_back({at + 2 * kRate, isLeft ? 0x0301U : 0x0302U, 0, 4 * kRate});
        for (std::size_t i = 0; i < 4 * kRate; ++i)
            (isLeft ? left : right)[at + 2 * kRate + i] = std::sin(kTurn * static_cast<double>(i) / (8.0 * kRate));
    }
    PinkNoise noise[] = {{82, kRate}, {83, kRate}, {84, kRate}};
    Bytes bytes = GdfHeader("2.10", channels, kSeconds, {});
    for (std::size_t second = 0; second < kSeconds; ++second) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            for (std::size_t i = second * kRate; i < (second + 1) * kRate; ++i) {
                const double rest = 1.0 - 0.8 * (channel == 0 ? right[i] : channel == 2 ? left[i] : 0.0);
                const double time = static_cast<double>(i) / kRate;
                const double waxing = 1.0 + 0.3 * std::sin(kTurn * 0.31 * time + static_cast<double>(channel));
                const double rhythm = (channel == 1 ? 4.0 : 12.0) * waxing * rest * std::sin(kTurn * 11.0 * time);
                bytes.U16(static_cast<std::uint16_t>(Code(rhythm + 7.0 * noise[channel].Next(), kScale)));
            }
        }
        for (std::size_t i = 0; i < kRate / 10; ++i) {
            const double time = static_cast<double>(second) + 10.0 * static_cast<double>(i) / kRate;
            bytes.Float(static_cast<float>(50.0 + 30.0 * std::sin(kTurn * 0.24 * time)));
        }
    }
    return bytes.Add(GdfEventTable("2.10", true, kRate, events)).Get();
}

}  // namespace quillon::samples
