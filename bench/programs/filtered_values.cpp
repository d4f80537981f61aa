// Filters the blocks of a recording in many ways, for scripts/check-filters:
//     filtered_values FILE
// For every block and filter a line "high low order notch bothWays rate channels samples", then the codes of each
// channel (16 bits) and the filtered ones (single precision). Ends with 1 where a part differs from the whole.
#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

#include "base/Text.h"
#include "norvik/RecordingLibrary.h"
#include "nsp/FilterStream.h"

using namespace quillon;

namespace {

constexpr std::int32_t kMostSamples = 400000;
constexpr std::size_t kMostChannels = 6;

using Rows = std::vector<std::vector<float>>;

std::vector<nsp::FilterSettings> FiltersAt(double rate) {
    std::vector<nsp::FilterSettings> filters;
    for (const bool bothWays : {false, true}) {
        for (const int order : {1, 2, 4}) {
            filters.push_back({0.5, 35.0, order, 50.0, bothWays});
            filters.push_back({0.1, 0.0, order, 0.0, bothWays});
            filters.push_back({1e-4 * rate, 0.49 * rate, order, 60.0, bothWays});
            filters.push_back({0.0, 1e-4 * rate, order, 0.0, bothWays});
            filters.push_back({0.49 * rate, 0.0, order, 0.0, bothWays});
        }
    }
    std::erase_if(filters, [&](const nsp::FilterSettings& settings) {
        return nsp::RefusalOf(settings, rate) != nsp::FilterRefusal::None;
    });
    return filters;
}

Rows Filter(const nsp::FilterDesign& design, const std::vector<std::vector<std::int16_t>>& codes, SampleSpan wanted) {
    std::vector<const std::int16_t*> start;
    for (const auto& row : codes) start.push_back(row.data());
    nsp::FilterStream stream(design, codes.size(), wanted, static_cast<std::int32_t>(codes[0].size()));
    Rows rows(codes.size());
    for (SampleSpan next = stream.Next(); next.count > 0; next = stream.Next()) {
        const std::int32_t count = std::min(20000, next.count);
        stream.Feed(nsp::CodeSamples{start}.From(next.first), static_cast<std::size_t>(count));
        for (std::size_t c = 0; c < rows.size(); ++c)
            rows[c].insert(rows[c].end(), stream.Row(c), stream.Row(c) + stream.Ready().count);
    }
    return rows;
}

bool PartsAreEqual(const nsp::FilterDesign& design, const std::vector<std::vector<std::int16_t>>& codes,
                   const Rows& whole, std::mt19937& random) {
    const auto samples = static_cast<std::int32_t>(codes[0].size());
    const auto below = [&](std::int32_t end) { return std::uniform_int_distribution(0, end - 1)(random); };
    for (int round = 0; round < 5; ++round) {
        const std::int32_t first = below(samples);
        const SampleSpan wanted{first, below(std::min(samples - first, 5000)) + 1};
        const Rows part = Filter(design, codes, wanted);
        for (std::size_t c = 0; c < part.size(); ++c) {
            if (!std::equal(part[c].begin(), part[c].end(), whole[c].begin() + wanted.first)) return false;
        }
    }
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) return 2;
    const std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    if (!library->OpenRecording(FromUtf8OrLatin1(arguments[1]), recording)) return 2;
    std::mt19937 random(1);
    for (std::int16_t number = 1; number <= recording->BlockCount(); ++number) {
        const std::shared_ptr<RecordingBlock> block = recording->GetBlock(number);
        block->Prepare();
        const std::int32_t samples = std::min(block->SampleCount(), kMostSamples);
        if (samples < 1) continue;
        const auto channels = std::min(static_cast<std::size_t>(block->ChannelCount()), kMostChannels);
        std::vector<std::vector<std::int16_t>> codes(channels);
        for (std::size_t c = 0; c < channels; ++c) {
            codes[c].resize(static_cast<std::size_t>(samples));
            block->ReadCodes(static_cast<std::int16_t>(c + 1), 0, samples, codes[c].data());
        }
        for (const nsp::FilterSettings& settings : FiltersAt(block->SampleRate())) {
            const nsp::FilterDesign design(settings, block->SampleRate());
            const Rows rows = Filter(design, codes, {0, samples});
            std::printf("%.17g %.17g %d %.17g %d %.17g %zu %d\n", settings.highPass, settings.lowPass, settings.order,
                        settings.notch, settings.bothWays ? 1 : 0, block->SampleRate(), channels, samples);
            for (const auto& row : codes) std::fwrite(row.data(), sizeof row[0], row.size(), stdout);
            for (const auto& row : rows) std::fwrite(row.data(), sizeof row[0], row.size(), stdout);
            if (!PartsAreEqual(design, codes, rows, random)) {
                std::fprintf(stderr, "a part differs from the whole\n");
                return 1;
            }
        }
    }
    return 0;
}
