#include "view/Lane.h"

#include <algorithm>

namespace quillon {

std::vector<LaneTrace> TracesOf(const Lanes& lanes) {
    std::vector<LaneTrace> traces;
    for (std::size_t at = 0; at < lanes.size(); ++at) {
        for (const std::int16_t channel : lanes[at].channels) traces.push_back({channel, at});
    }
    std::sort(traces.begin(), traces.end(),
              [](const LaneTrace& a, const LaneTrace& b) { return a.channel < b.channel; });
    return traces;
}

std::vector<std::int16_t> ChannelsOf(const Lanes& lanes) {
    std::vector<std::int16_t> channels;
    for (const LaneTrace& trace : TracesOf(lanes)) channels.push_back(trace.channel);
    return channels;
}

}  // namespace quillon
