#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "RecordingWriters.h"
#include "Signals.h"

/// The big recordings: 32 channels of 1 kHz, written second by second out of one minute of wandering noise.
namespace quillon::samples {

inline constexpr std::size_t kBenchChannels = 32;
inline constexpr std::size_t kBenchRate = 1000;

inline std::vector<std::int16_t> BenchMinute() {
    Random random(51);
    std::vector<std::int16_t> codes(kBenchChannels * kBenchRate * 61);
    double level = 0.0;
    for (std::int16_t& code : codes) {
        level = level * 0.97 + 2000.0 * (random.Uniform() - 0.5);
        code = Code(level, 1.0);
    }
    return codes;
}

/// Codes of one second, 32 x 1000 of them in the order of the file.
inline Bytes BenchSecond(const std::vector<std::int16_t>& minute, std::size_t second) {
    Bytes bytes;
    // 61 seconds of codes are walked in steps of a little more than one, so that no two seconds are alike for long.
    const std::size_t from = second * (kBenchChannels * kBenchRate + 7) % (kBenchChannels * kBenchRate * 60);
    for (std::size_t i = 0; i < kBenchChannels * kBenchRate; ++i) {
        bytes.U16(static_cast<std::uint16_t>(minute[from + i]));
    }
    return bytes;
}

/// Frames alone, of 4700 seconds.
inline void WriteBenchFrames(std::ostream& file) {
    const auto minute = BenchMinute();
    for (std::size_t second = 0; second < 4700; ++second) file << BenchSecond(minute, second).Get();
}

inline void WriteBenchBin(std::ostream& file, std::size_t seconds) {
    std::vector<BinChannel> channels;
    for (std::size_t i = 1; i <= kBenchChannels; ++i) channels.push_back({"Ch " + std::to_string(i), "uV", 0.1F, 0.0F});
    file << BinHeader(static_cast<float>(kBenchRate), "Bench", channels,
                      static_cast<std::uint32_t>(seconds * kBenchRate));
    const auto minute = BenchMinute();
    for (std::size_t second = 0; second < seconds; ++second) file << BenchSecond(minute, second).Get();
}

inline void WriteBenchEdf(std::ostream& file, std::size_t seconds) {
    std::vector<EdfSignal> signals;
    for (std::size_t i = 1; i <= kBenchChannels; ++i) {
        signals.push_back({"Ch " + std::to_string(i), "", "uV", -3277, 3277, "", kBenchRate});
    }
    signals.push_back({kEdfAnnotations, "", "", -1, 1, "", 16});
    file << EdfHeader(signals, seconds);
    const auto minute = BenchMinute();
    for (std::size_t second = 0; second < seconds; ++second) {
        file << BenchSecond(minute, second).Get();
        Bytes list;
        file << list.Text(EdfOnset(static_cast<double>(second)) + "\x14\x14", 32, '\0').Get();
    }
}

}  // namespace quillon::samples
