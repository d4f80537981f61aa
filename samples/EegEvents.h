#pragma once

#include <string>
#include <vector>

#include "Signals.h"

namespace quillon::samples {

struct EegEvent {
    double time = 0.0;  ///< s
    std::string text;
};

/// What happens in the recording: eyes open and closed in turn, blinks while they are open, spikes while closed, and
/// now and then the tension of the jaw.
inline std::vector<EegEvent> EegEvents(double seconds) {
    std::vector<EegEvent> events{
        {0.0, "Eyes open"}, {20.0, "Eyes closed"}, {80.0, "Eyes open"}, {120.0, "Eyes closed"}, {200.0, "Eyes open"}};
    for (const double time : {47.3, 52.8, 151.6, 163.1, 178.4}) events.push_back({time, "Spike"});
    for (const double time : {13.4, 64.2, 101.7, 141.3, 226.5}) events.push_back({time, "Muscle"});
    Random random(11);
    for (double time = 2.0; time < seconds - 1.0; time += 2.0 + 4.0 * random.Uniform()) {
        const bool open = time < 19.0 || (time > 81.0 && time < 119.0) || time > 201.0;
        if (open) events.push_back({std::round(time * 100.0) / 100.0, "Blink"});
    }
    std::sort(events.begin(), events.end(), [](const auto& a, const auto& b) { return a.time < b.time; });
    return events;
}

}  // namespace quillon::samples
