#pragma once

#include <string>
#include <vector>

#include "RecordingWriters.h"
#include "Signals.h"

namespace quillon::samples {

/// A BrainVision recording, which is three files.
struct BrainVisionFiles {
    std::string header;
    std::string samples;
    std::string markers;
};

/// Potentials that two kinds of tones evoke: a wave 0.1 s after each, and one 0.35 s after the rare kind.
inline BrainVisionFiles EvokedFiles(const std::string& name) {
    struct Channel {
        std::string_view name;
        double early;
        double late;
    };
    constexpr Channel kChannels[] = {
        {"Fz", 1.0, 0.4}, {"Cz", 0.9, 0.8}, {"Pz", 0.5, 1.0}, {"O1", 0.2, 0.5}, {"O2", 0.2, 0.5}};
    constexpr double kRate = 500.0;
    constexpr std::size_t kCount = 30000;
    constexpr double kScale = 0.1;
    const auto number = [](auto value) { return std::to_string(value); };
    BrainVisionFiles files;
    files.header =
        "Brain Vision Data Exchange Header File Version 1.0\r\n\r\n[Common Infos]\r\nCodepage=UTF-8\r\nDataFile=" +
        name + ".eeg\r\nMarkerFile=" + name +
        ".vmrk\r\nDataFormat=BINARY\r\nDataOrientation=MULTIPLEXED\r\n"
        "NumberOfChannels=" +
        number(std::size(kChannels)) +
        "\r\nSamplingInterval=2000\r\n\r\n"
        "[Binary Infos]\r\nBinaryFormat=INT_16\r\n\r\n[Channel Infos]\r\n";
    files.markers =
        "Brain Vision Data Exchange Marker File, Version 1.0\r\n\r\n[Common Infos]\r\nCodepage=UTF-8\r\nDataFile=" +
        name + ".eeg\r\n\r\n[Marker Infos]\r\nMk1=New Segment,,1,1,0,20110404125702000000\r\n";
    std::vector<std::vector<double>> signals;
    for (std::size_t at = 0; at < std::size(kChannels); ++at) {
        files.header += "Ch" + number(at + 1) + "=" + std::string(kChannels[at].name) + ",,0.1,\xC2\xB5V\r\n";
        PinkNoise noise(51 + at, kRate);
        signals.emplace_back(kCount);
        for (double& value : signals.back()) value = 6.0 * noise.Next();
    }
    Random random(50);
    std::size_t markers = 1;
    for (double time = 1.0; time < 59.0; time += 1.1 + 0.4 * random.Uniform()) {
        const bool rare = random.Uniform() < 0.25;
        const auto position = static_cast<std::size_t>(time * kRate);
        files.markers +=
            "Mk" + number(++markers) + "=Stimulus," + (rare ? "S  2," : "S  1,") + number(position + 1) + ",1,0\r\n";
        for (std::size_t at = 0; at < std::size(kChannels); ++at) {
            for (std::size_t i = position; i < std::min(position + 400, kCount); ++i) {
                const double since = static_cast<double>(i - position) / kRate;
                signals[at][i] -= 12.0 * kChannels[at].early * Bell(since, 0.1, 0.015);
                if (rare) signals[at][i] += 18.0 * kChannels[at].late * Bell(since, 0.35, 0.05);
            }
        }
    }
    files.markers += "Mk" + number(++markers) + "=Comment,Subject moves,20001,1500,0\r\n";
    Bytes bytes;
    for (std::size_t i = 0; i < kCount; ++i)
        for (const auto& signal : signals) bytes.U16(static_cast<std::uint16_t>(Code(signal[i], kScale)));
    files.samples = bytes.Get();
    return files;
}

}  // namespace quillon::samples
