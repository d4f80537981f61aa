// Time of a full redraw in lanes at zooms between those of the table, against the nearest of these on the same lanes:
//     free_axis_time FILE [SAMPLES_PER_COLUMN]
// "new" is the first drawing at that zoom where the cells of the block's extremes are known, "again" the next one,
// "page" shows the next page.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "LaneGraph.h"
#include "base/Text.h"
#include "norvik/RecordingLibrary.h"

using namespace quillon;

using bench::kWidth;

int main(int count, char** arguments) {
    if (count < 2) return 2;
    const std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    if (!library->OpenRecording(FromUtf8OrLatin1(arguments[1]), recording)) return 1;
    const std::shared_ptr<RecordingBlock> block = recording->GetBlock(1);
    block->Prepare();
    bench::LaneGraph graph(block);
    graph.Use(false);
    graph.axis.ShowSamples({0, block->SampleCount()});
    std::printf("%d channels, %d samples; fitted cold by the table %.1f ms\n", block->ChannelCount(),
                block->SampleCount(), graph.Draw());
    graph.extremes.Reset();
    graph.Use(true);
    graph.axis.ShowSamples({0, block->SampleCount()});
    std::printf("fitted cold on a free axis %.1f ms\n", graph.Draw());
    std::printf("%12s %12s %10s %10s %10s %10s\n", "per column", "table", "ms", "new", "again", "page");
    const double only = count > 2 ? std::atof(arguments[2]) : 0.0;
    for (double perColumn = only > 0.0 ? only : 0.02; perColumn * kWidth < block->SampleCount(); perColumn *= 1.7) {
        int zoom = 0;
        const auto distance = [&](int index) { return std::fabs(std::log(TimeAxis::TableEntry(index) / perColumn)); };
        while (distance(zoom + 1) < distance(zoom)) ++zoom;
        // In turns, and the best of each: others may be using the processor.
        double table = 1e9, first = 1e9, again = 1e9, page = 1e9;
        for (int round = 0; round < (only > 0.0 ? 50 : 15); ++round) {
            graph.Use(false);
            graph.axis.SelectZoom(zoom);
            table = std::min(table, graph.Draw());
            graph.Use(true);
            graph.axis.SelectPage(perColumn * kWidth / block->SampleRate(), 0, 1);
            graph.extremes.Columns() = {};
            first = std::min(first, graph.Draw());
            again = std::min(again, graph.Draw());
            graph.axis.ScrollBy(graph.axis.PageShift(2));
            page = std::min(page, graph.Draw());
        }
        std::printf("%12.3f %12d %10.2f %10.2f %10.2f %10.2f\n", perColumn, TimeAxis::TableEntry(zoom), table,
                    first / table, again / table, page / table);
        if (only > 0.0) break;
    }
    return 0;
}
