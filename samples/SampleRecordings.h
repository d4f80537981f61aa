#pragma once

#include <string>
#include <vector>

#include "HeartBeat.h"
#include "RecordingWriters.h"
#include "Signals.h"

/// The sample recordings other than the EEG, as bytes of files.
namespace quillon::samples {

/// Chords of four voices with bass and a soft beat, 2 s each.
inline std::string MusicFile() {
    constexpr std::size_t kRate = 44100;
    constexpr std::size_t kSeconds = 20;
    constexpr double kChords[4][4] = {{220.0, 261.63, 329.63, 440.0},
                                      {174.61, 220.0, 261.63, 349.23},
                                      {130.81, 196.0, 261.63, 329.63},
                                      {196.0, 246.94, 293.66, 392.0}};
    Random random(21);
    std::vector<std::int16_t> frames;
    frames.reserve(2 * kRate * kSeconds);
    double hissBefore = 0.0;
    for (std::size_t i = 0; i < kRate * kSeconds; ++i) {
        const double time = static_cast<double>(i) / kRate;
        const auto& chord = kChords[static_cast<std::size_t>(time / 2.0) % 4];
        const double inChord = std::fmod(time, 2.0);
        double left = 0.0;
        double right = 0.0;
        for (std::size_t voice = 0; voice < 4; ++voice) {
            // Plucked one after the other, again in the second half of the chord.
            const double since = std::fmod(inChord, 1.0) - 0.125 * static_cast<double>(voice);
            if (since < 0.0) continue;
            const double envelope = (1.0 - std::exp(-since * 400.0)) * std::exp(-since * 2.6);
            double tone = 0.0;
            for (int harmonic = 1; harmonic <= 6; ++harmonic) {
                tone +=
                    std::exp(-since * 2.0 * harmonic) / harmonic * std::sin(kTurn * chord[voice] * harmonic * since);
            }
            const double side = 0.25 + 0.5 * static_cast<double>(voice) / 3.0;
            left += 0.30 * envelope * tone * (1.0 - side);
            right += 0.30 * envelope * tone * side;
        }
        const double bass =
            std::sin(kTurn * chord[0] / 2.0 * inChord) * std::exp(-inChord * 0.8) * (1.0 - std::exp(-inChord * 120.0));
        const double inBeat = std::fmod(time + 0.25, 0.5);
        const double white = random.Normal();
        const double hiss = (white - hissBefore) * 0.03 * std::exp(-inBeat * 45.0);
        hissBefore = white;
        const double fade = std::min({1.0, time / 0.8, (static_cast<double>(kSeconds) - time) / 2.5});
        frames.push_back(Code(fade * (left + 0.28 * bass + hiss), 1.0 / 32768.0));
        frames.push_back(Code(fade * (right + 0.28 * bass + 0.7 * hiss), 1.0 / 32768.0));
    }
    return WaveFile(2, kRate, frames,
                    {{0, "Intro"}, {4 * kRate, "Verse"}, {12 * kRate, "Bridge"}, {16 * kRate, "Ending"}});
}

inline std::string EcgFile() {
    constexpr double kRate = 500.0;
    constexpr std::size_t kCount = 150000;
    constexpr double kScale = 0.0005;
    Random random(31);
    const HeartLeads heart = BeatingHeart(kRate, kCount, random);
    PinkNoise wander1(32, kRate);
    PinkNoise wander2(33, kRate);
    Bytes bytes;
    bytes.Text(BinHeader(static_cast<float>(kRate), "ECG-3",
                         {{"I", "mV", static_cast<float>(kScale), 0.0F},
                          {"II", "mV", static_cast<float>(kScale), 0.0F},
                          {"III", "mV", static_cast<float>(kScale), 0.0F}},
                         kCount));
    for (std::size_t i = 0; i < kCount; ++i) {
        const double time = static_cast<double>(i) / kRate;
        const double breath = std::sin(kTurn * 0.25 * time);
        const double first = heart.lead1[i] + 0.04 * breath + 0.022 * wander1.Next() + 0.006 * random.Normal();
        const double second = heart.lead2[i] + 0.07 * breath + 0.022 * wander2.Next() + 0.006 * random.Normal();
        // Lead III is the difference of the other two.
        for (const double value : {first, second, second - first}) {
            bytes.U16(static_cast<std::uint16_t>(Code(value, kScale)));
        }
    }
    return bytes.Get();
}

/// A shaker's sweep from 10 Hz to 4 kHz and the answer of a structure with three resonances.
inline std::string VibrationFile() {
    constexpr double kRate = 10000.0;
    constexpr std::size_t kCount = 200000;
    constexpr double kScale = 0.01;
    constexpr double kModes[3][3] = {
        {180.0, 0.02, 1.0}, {760.0, 0.015, -0.7}, {2100.0, 0.025, 0.5}};  // Hz, damping, weight
    Random random(41);
    Bytes bytes;
    bytes.Text(BinHeader(
        static_cast<float>(kRate), "Shaker",
        {{"Drive", "m/s2", static_cast<float>(kScale), 0.0F}, {"Response", "m/s2", static_cast<float>(kScale), 0.0F}},
        kCount));
    double turn = 0.0;
    for (std::size_t i = 0; i < kCount; ++i) {
        const double time = static_cast<double>(i) / kRate;
        const double running = std::clamp((time - 0.5) / 19.0, 0.0, 1.0);
        const double frequency = 10.0 * std::pow(400.0, running);
        turn += frequency / kRate;
        const double envelope = std::clamp((time - 0.4) * 5.0, 0.0, 1.0) * std::clamp((19.7 - time) * 5.0, 0.0, 1.0);
        const double cosine = std::cos(kTurn * turn);
        const double sine = std::sin(kTurn * turn);
        double response = 0.15 * sine;
        for (const auto& [mode, damping, weight] : kModes) {
            const double ratio = frequency / mode;
            const double real = 1.0 - ratio * ratio;
            const double imaginary = 2.0 * damping * ratio;
            const double size = real * real + imaginary * imaginary;
            response += weight * (real * sine - imaginary * cosine) / size;
        }
        const double drive = 5.0 * envelope * sine + 0.05 * random.Normal();
        const double answer = 5.0 * envelope * response + 0.25 * random.Normal();
        bytes.U16(static_cast<std::uint16_t>(Code(drive, kScale)))
            .U16(static_cast<std::uint16_t>(Code(answer, kScale)));
    }
    return bytes.Get();
}

}  // namespace quillon::samples
