#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "EegEvents.h"
#include "EegSignals.h"
#include "HeartBeat.h"
#include "RecordingWriters.h"
#include "Signals.h"

/// The sample EEG as bytes of a file: 19 electrodes, an ECG and a respiration belt, all at one rate.
namespace quillon::samples {

/// The stretch of a belt around the chest in %, about 15 breaths a minute of changing depth.
inline std::vector<double> RespirationBelt(double rate, std::size_t count) {
    Random random(61);
    std::vector<double> belt(count);
    double turn = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double time = static_cast<double>(i) / rate;
        turn += (0.25 + 0.025 * std::sin(kTurn * 0.017 * time) + 0.015 * std::sin(kTurn * 0.041 * time)) / rate;
        const double depth = 31.0 + 7.0 * std::sin(kTurn * 0.029 * time) + 4.0 * std::sin(kTurn * 0.011 * time);
        // Breathing in is faster than breathing out.
        const double breath = std::sin(kTurn * turn + 0.4 * std::sin(kTurn * turn));
        belt[i] = std::clamp(50.0 + depth * breath + 0.3 * random.Normal(), 0.0, 100.0);
    }
    return belt;
}

/// A lead in mV, about 70 beats a minute: faster when the belt widens, slower when it narrows.
inline std::vector<double> EegHeartLead(double rate, const std::vector<double>& belt) {
    Random random(71);
    PinkNoise wander(72, rate);
    std::vector<double> lead(belt.size());
    for (std::size_t i = 0; i < lead.size(); ++i)
        lead[i] = 0.001 * (belt[i] - 50.0) + 0.02 * wander.Next() + 0.005 * random.Normal();
    const double end = static_cast<double>(lead.size()) / rate;
    for (double start = 0.2; start < end;) {
        AddBeat(lead, rate, start, kBeat, &Wave::lead2);
        const double stretch = belt[static_cast<std::size_t>(start * rate)] - 50.0;
        start += 0.857 - 0.0012 * stretch + 0.012 * random.Normal();
    }
    return lead;
}

/// Codes of one second of a signal. The digital range is all 16 bits, as in the header.
inline void AddEdfSecond(Bytes& bytes, const EdfSignal& signal, const std::vector<double>& channel,
                         std::size_t second) {
    const double scale = (signal.physicalMaximum - signal.physicalMinimum) / 65535.0;
    const double codeZero = signal.physicalMinimum + 32768.0 * scale;
    const std::size_t from = second * signal.samplesPerRecord;
    for (std::size_t i = from; i < from + signal.samplesPerRecord; ++i)
        bytes.U16(static_cast<std::uint16_t>(Code(channel[i] - codeZero, scale)));
}

/// Throws std::runtime_error when the marks of a second do not fit their place in the record.
inline std::string EegFile() {
    constexpr std::size_t kRate = 256;
    constexpr std::size_t kSeconds = 240;
    constexpr std::size_t kCount = kRate * kSeconds;
    constexpr std::size_t kAnnotationBytes = 120;
    const auto events = EegEvents(kSeconds);
    const AlphaRhythm alpha = MakeAlphaRhythm(kRate, kCount);
    auto channels = EegBackground(kRate, kCount);
    std::vector<EdfSignal> signals;
    for (const Electrode& electrode : kElectrodes) {
        AddEegSignals(channels[signals.size()], electrode, signals.size() + 1, kRate, alpha, events);
        signals.push_back({electrode.label, "AgAgCl electrode", "uV", -800, 800, "LP:100Hz", kRate});
    }
    auto belt = RespirationBelt(kRate, kCount);
    channels.push_back(EegHeartLead(kRate, belt));
    signals.push_back({"ECG", "AgAgCl electrode", "mV", -5, 5, "HP:0.05Hz LP:100Hz", kRate});
    channels.push_back(std::move(belt));
    signals.push_back({"Resp chest", "Respiration belt", "%", 0, 100, "", kRate});

    auto allSignals = signals;
    allSignals.push_back({kEdfAnnotations, "", "", -1, 1, "", kAnnotationBytes / 2});
    Bytes bytes;
    bytes.Text(EdfHeader(allSignals, kSeconds));
    auto event = events.begin();
    for (std::size_t record = 0; record < kSeconds; ++record) {
        for (std::size_t i = 0; i < signals.size(); ++i) AddEdfSecond(bytes, signals[i], channels[i], record);
        std::string list = EdfOnset(static_cast<double>(record)) + "\x14\x14" + '\0';
        for (; event != events.end() && event->time < static_cast<double>(record + 1); ++event) {
            list += EdfOnset(event->time) + '\x14' + event->text + '\x14' + '\0';
        }
        if (list.size() > kAnnotationBytes) throw std::runtime_error("too many marks in one second");
        bytes.Text(list, kAnnotationBytes, '\0');
    }
    return bytes.Get();
}

}  // namespace quillon::samples
