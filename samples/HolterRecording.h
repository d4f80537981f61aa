#pragma once

#include <string>

#include "HeartBeat.h"
#include "RecordingWriters.h"
#include "Signals.h"

namespace quillon::samples {

/// A WFDB record, which is three files.
struct WfdbFiles {
    std::string header;
    std::string samples;
    std::string annotations;
};

/// Ten minutes of two leads with samples of 12 bits, and a kind for every beat. `name`: without blanks.
inline WfdbFiles HolterFiles(const std::string& name) {
    constexpr double kRate = 250.0;
    constexpr std::size_t kCount = 150000;
    constexpr double kScale = 0.005;
    constexpr double kPeak = 0.245;  // s after the start of a beat
    constexpr unsigned kNormal = 1, kPremature = 5, kRhythm = 28, kText = 63;
    Random random(61);
    const HeartLeads heart = BeatingHeart(kRate, kCount, random);
    WfdbFiles files;
    files.header = name + " 2 250 150000 8:30:00 04/04/2011\n";
    for (const char* lead : {"MLII", "V1"}) files.header += name + ".dat 212 200(0)/mV 12 0 0 0 0 " + lead + "\n";
    files.header += "# Simulated\n";

    PinkNoise wander1(62, kRate);
    PinkNoise wander2(63, kRate);
    Bytes bytes;
    for (std::size_t i = 0; i < kCount; ++i) {
        const double first = heart.lead2[i] + 0.03 * wander1.Next() + 0.006 * random.Normal();
        const double second = -0.8 * heart.lead1[i] + 0.03 * wander2.Next() + 0.006 * random.Normal();
        const auto a = static_cast<std::uint16_t>(Code(first, kScale));
        const auto b = static_cast<std::uint16_t>(Code(second, kScale));
        bytes.Number(a, 1).Number((a >> 8 & 15U) | (b >> 8 & 15U) << 4, 1).Number(b, 1);
    }
    files.samples = bytes.Get();

    Bytes annotations;
    annotations.U16(kRhythm << 10).U16(kText << 10 | 2U).Text("(N");
    std::uint32_t before = 0;
    for (const HeartLeads::Beat& beat : heart.beats) {
        const auto at = static_cast<std::uint32_t>((beat.start + kPeak) * kRate);
        annotations.U16((beat.premature ? kPremature : kNormal) << 10 | (at - before));
        before = at;
    }
    files.annotations = annotations.U16(0).Get();
    return files;
}

}  // namespace quillon::samples
