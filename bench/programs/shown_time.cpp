// What filters and references cost where a recording is drawn in lanes:
//     shown_time FILE [SECONDS]
// A page of so many seconds (10) is drawn at places far from each other, "page", and again scrolled by a tenth,
// "scrolled"; both as ratios to what is stored. "summary" is the speed of the pass over the whole block that its
// extremes are found in, in millions of samples of all channels per second. "zoomed" are ms for large parts of the
// block, drawn when that pass is done.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>

#include "LaneGraph.h"
#include "base/Text.h"
#include "data/ShownBlock.h"
#include "data/UnitGroups.h"
#include "norvik/RecordingLibrary.h"
#include "view/DataRange.h"

using namespace quillon;

namespace {

struct Times {
    double page = 0.0;  ///< ms, as the next
    double scrolled = 0.0;
    double summary = 0.0;  ///< s
    double zoomed = 0.0;   ///< ms
};

Times Measure(const std::shared_ptr<RecordingBlock>& block, double seconds) {
    bench::LaneGraph graph(block);
    graph.Use(true);
    graph.axis.SelectPage(seconds, 0, 1);
    std::vector<double> pages, scrolled;
    const std::int32_t samples = block->SampleCount();
    for (std::int32_t at = 0; at < 40; ++at) {
        graph.extremes.Reset();
        const std::int32_t page = graph.axis.Visible().count;
        graph.axis.ShowSamples({static_cast<std::int32_t>(std::int64_t{at} * 7919 * 4999 % (samples - page)), page});
        pages.push_back(graph.Draw());
        graph.axis.ScrollBy(bench::kWidth / 10);
        scrolled.push_back(graph.Draw());
    }
    Times times{bench::Median(pages), bench::Median(scrolled)};
    graph.extremes.Reset();
    RangeRecords ranges(graph.extremes);
    std::vector<std::int16_t> all(static_cast<std::size_t>(block->ChannelCount()));
    std::iota(all.begin(), all.end(), std::int16_t{1});
    times.summary = bench::Seconds([&] {
        while (ranges.ReadMissing(graph.block, all, {samples / 3, 1000})) {
        }
    });
    std::vector<double> zoomed;
    for (std::int32_t part = 1; part <= 9; ++part) {
        const std::int32_t length = samples / (part + 1) * 2 - part;
        graph.axis.ShowSamples({(samples - length) / 2, length});
        zoomed.push_back(graph.Draw());
    }
    times.zoomed = bench::Median(zoomed);
    return times;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) return 2;
    const std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    if (!library->OpenRecording(FromUtf8OrLatin1(arguments[1]), recording)) return 1;
    const std::shared_ptr<RecordingBlock> stored = recording->GetBlock(1);
    stored->Prepare();
    const double seconds = count > 2 ? std::atof(arguments[2]) : 10.0;
    const double samples = static_cast<double>(stored->SampleCount()) * stored->ChannelCount();
    struct Kind {
        const char* name;
        nsp::FilterSettings filter;
        bool average;
    };
    const Kind kinds[] = {{"0.5-35 Hz", {.highPass = 0.5, .lowPass = 35.0}, false},
                          {"0.5-35 Hz, 50 Hz", {.highPass = 0.5, .lowPass = 35.0, .notch = 50.0}, false},
                          {"0.1-35 Hz, 50 Hz", {.highPass = 0.1, .lowPass = 35.0, .notch = 50.0}, false},
                          {"0.5-35 Hz both ways", {.highPass = 0.5, .lowPass = 35.0, .bothWays = true}, false},
                          {"average", {}, true},
                          {"0.5-35 Hz, average", {.highPass = 0.5, .lowPass = 35.0}, true}};
    for (int round = 0; round < 2; ++round) {
        const Times raw = Measure(stored, seconds);
        std::printf("%-22s page %6.2f ms    scrolled %6.2f ms    summary %6.0f zoomed %7.1f ms\n", "stored", raw.page,
                    raw.scrolled, samples / raw.summary * 1e-6, raw.zoomed);
        for (const Kind& kind : kinds) {
            ShownSettings settings;
            for (std::int16_t channel = 1; channel <= stored->ChannelCount(); ++channel)
                settings.filters[GroupOf(stored->ChannelUnit(channel)).name] = kind.filter;
            if (kind.average) settings.reference.kind = Reference::Kind::Average;
            const std::vector<bool> all(static_cast<std::size_t>(stored->ChannelCount()), true);
            const Times shown = Measure(MakeShownBlock(stored, settings, all), seconds);
            std::printf("%-22s page %6.2f times scrolled %6.2f times summary %6.0f zoomed %7.1f ms\n", kind.name,
                        shown.page / raw.page, shown.scrolled / raw.scrolled, samples / shown.summary * 1e-6,
                        shown.zoomed);
        }
    }
    return 0;
}
