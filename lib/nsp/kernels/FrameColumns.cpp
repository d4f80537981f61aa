#include "nsp/kernels/FrameColumns.h"

#include <algorithm>

namespace quillon::nsp {

FrameColumns::FrameColumns(std::size_t channels, std::size_t lanes, std::span<const std::size_t> selected,
                           std::span<ExtremePair* const> results) {
    std::vector<std::size_t> sorted(selected.begin(), selected.end());
    std::sort(sorted.begin(), sorted.end());
    for (const std::size_t channel : sorted) {
        if (columns.empty() || channel >= columns.back().channel + lanes)
            columns.push_back({channels < lanes ? 0 : std::min(channel, channels - lanes)});
    }
    out.resize(columns.size() * lanes);
    for (std::size_t i = 0; i < selected.size(); ++i) {
        // Of two vectors that hold the channel, the earlier one.
        const auto holds = [&](const FrameColumn& column) { return selected[i] < column.channel + lanes; };
        const auto column = std::find_if(columns.begin(), columns.end(), holds);
        const std::size_t lane = selected[i] - column->channel;
        column->wanted |= std::uint32_t{3} << (2 * lane);
        out[static_cast<std::size_t>(column - columns.begin()) * lanes + lane] = results[i];
    }
}

FrameColumns::~FrameColumns() = default;

}  // namespace quillon::nsp
