#include "view/ReadableSamples.h"

#include <exception>
#include <vector>

namespace quillon {

bool CanRead(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t first, std::int32_t count) {
    try {
        std::vector<RunExtremes> ignored(channels.size());
        std::vector<RunExtremes*> targets;
        for (RunExtremes& each : ignored) targets.push_back(&each);
        if (count > 1 && block.ColumnExtremes(channels, first, count, count, targets)) return true;
        std::vector<std::int16_t> codes(static_cast<std::size_t>(count));
        for (const std::int16_t channel : channels) block.ReadCodes(channel, first, count, codes.data());
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

std::int32_t CountBeforeCut(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t first,
                            std::int32_t count) {
    std::int32_t readable = 0;
    for (std::int32_t end = count; readable < end;) {
        const std::int32_t middle = readable + (end - readable) / 2;
        CanRead(block, channels, first + middle, 1) ? readable = middle + 1 : end = middle;
    }
    return readable;
}

std::int32_t CountBeforeHole(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t first,
                             std::int32_t count) {
    std::int32_t readable = 0;
    for (std::int32_t end = count; readable + 1 < end;) {
        const std::int32_t middle = readable + (end - readable) / 2;
        CanRead(block, channels, first + readable, middle - readable) ? readable = middle : end = middle;
    }
    return readable;
}

}  // namespace quillon
