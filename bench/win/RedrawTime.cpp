// Time of a full redraw of the graph: 32 channels, 1500 columns, 2000 samples each, against reading those samples once:
//     redraw-time RECORDING
// "first" reads the samples, "again" has their summary, "page" scrolls by a page, "blit" copies the image once more.
// Then the same in lanes against one axis, a wheel notch on the scale of a lane included.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

#include "app/win/WinServices.h"
#include "data/Document.h"
#include "norvik/RecordingLibrary.h"
#include "view/WaveformView.h"
#include "view/win/GraphPainter.h"

namespace {

using namespace quillon;

template <typename Work>
double Milliseconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Redraws in lanes against those on one axis, in turn.
void CompareLanes(WaveformView& view, const std::function<void()>& draw) {
    std::vector<double> first, again, notch;
    view.ScrollBy(-view.Axis().FirstColumn());
    for (int round = 0; round < 9; ++round) {
        double cold[2] = {};
        double warm[2] = {};
        for (const bool lanes : {false, true}) {
            view.SetLanes(lanes);
            view.Extremes().Reset();
            cold[lanes ? 1 : 0] = Milliseconds(draw);
            warm[lanes ? 1 : 0] = Milliseconds(draw);
        }
        first.push_back(cold[1] / cold[0]);
        again.push_back(warm[1] / warm[0]);
        view.ZoomGroup(0, round % 2 == 0 ? 1 : -1);
        notch.push_back(Milliseconds(draw) / warm[0]);
    }
    view.SetLanes(false);
    std::printf("lanes against one axis: first %.2f, again %.2f, after a notch %.2f\n", Median(first), Median(again),
                Median(notch));
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count < 2) return 2;
    const std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
    const WinServices services(Language::English);
    Document document(*library, services);
    if (!document.OpenFile(Narrow16(arguments[1]), {})) return 1;
    const ViewBlock& block = document.Block();
    constexpr int width = 1500;
    constexpr int height = 800;
    WaveformView view(document);
    view.BlockLoaded();
    view.Arrange(width, height);
    view.SelectZoomX(10);
    const GraphScene scene{block, view.Axis(), view.GetLanes(),  view.Extremes(),
                           false, false,       GridStyle::Lines, 0x808080};
    const ScreenDensity density;
    GraphPainter painter(density);
    view.FitScales(painter.SeenRange(scene));
    cMemDC target;
    target.CreateBitmap(width, height);
    const auto show = [&] { painter.Paint(target.Handle(), {0, 0, width, height}); };
    std::vector<double> read, first, again, page, blit;
    std::vector<std::int16_t> frames(std::size_t{4096} * static_cast<std::size_t>(block.channelCount));
    const std::int32_t samples = std::min(width * 2000, block.sampleCount);
    for (int round = 0; round < 9; ++round) {
        view.ScrollBy(-view.Axis().FirstColumn());
        read.push_back(Milliseconds([&] {
            for (std::int32_t at = 0; at < samples; at += 4096)
                block.block->ReadFrames(at, std::min(4096, samples - at), frames.data());
        }));
        painter.ForgetBlock();
        view.Extremes().Reset();
        first.push_back(Milliseconds([&] {
            painter.Draw(scene, width, height);
            while (painter.IsIncomplete()) painter.DrawMore(scene);
            show();
        }));
        again.push_back(Milliseconds([&] { painter.Draw(scene, width, height), show(); }));
        const std::int32_t shift = view.ScrollBy(view.Axis().PageShift(2) / 15).scrolled;
        page.push_back(Milliseconds([&] { painter.Scroll(scene, shift), show(); }));
        blit.push_back(Milliseconds(show));
    }
    std::printf(
        "%d channels, %d samples: read %.1f ms, first %.1f ms (%.2f of it), again %.1f ms, "
        "scrolled by a fifteenth of a page %.1f ms, blit %.2f ms\n",
        block.channelCount, samples, Median(read), Median(first), Median(first) / Median(read), Median(again),
        Median(page), Median(blit));

    CompareLanes(view, [&] {
        painter.Draw(scene, width, height);
        while (painter.IsIncomplete()) painter.DrawMore(scene);
        show();
    });

    // The whole block, of which nothing is known.
    std::vector<double> whole, fitted, columns;
    for (int round = 0; round < 3; ++round) {
        whole.push_back(Milliseconds([&] {
            for (std::int64_t at = 0; at < block.sampleCount; at += 4096) {
                const auto from = static_cast<std::int32_t>(at);
                block.block->ReadFrames(from, std::min(4096, block.sampleCount - from), frames.data());
            }
        }));
        view.FitBlock();
        painter.ForgetBlock();
        view.Extremes().Reset();
        const auto fit = [&](bool until) {
            painter.Draw(scene, width, height);
            while (painter.IsIncomplete() && (until || painter.MissingShare() >= 1.0)) painter.DrawMore(scene);
            show();
        };
        columns.push_back(Milliseconds([&] { fit(false); }));
        view.Extremes().Reset();
        fitted.push_back(Milliseconds([&] { fit(true); }));
    }
    std::printf("whole block of %d samples: read %.0f ms, fitted %.0f ms (%.2f of it), first columns after %.1f ms\n",
                block.sampleCount, Median(whole), Median(fitted), Median(fitted) / Median(whole), Median(columns));
    return 0;
}
