// Time of turning pages with the signals of all blocks of a stretch in lanes:
//     all_signals_time FILE [HIGH LOW NOTCH]
// The signals in volts are filtered at these frequencies, 0 for none.
// "pass" reads the visible samples of the visible signals once from the file; "page" draws the next page, whose samples
// are not known yet, "again" the same page once more; "lanes" scrolls through all lanes at the same page.
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "BenchData.h"
#include "base/Text.h"
#include "data/Document.h"
#include "data/UnitGroups.h"
#include "norvik/RecordingLibrary.h"
#include "view/GraphPicture.h"
#include "view/WaveformView.h"

using namespace quillon;

namespace {

constexpr std::int32_t kWidth = 1500;
constexpr std::int32_t kHeight = 800;

class Silent : public UserServices {
  public:
    using UserServices::ShowMessage;
    void ShowMessage(const std::u16string&, const std::u16string&) override {}
    bool Ask(const std::u16string&) override { return false; }
    void SetStatus(const std::u16string&) override {}
    [[nodiscard]] std::u16string Text(int) const override { return u"Channel"; }
    [[nodiscard]] std::u16string DateAndTime(double) const override { return {}; }
    [[nodiscard]] std::u16string LongTime(double) const override { return {}; }
};

/// Reads what the view shows once, and looks at every sample.
int ReadVisible(const GraphScene& scene) {
    int most = 0;
    std::vector<std::int16_t> codes;
    const SceneBlocks blocks = scene.Blocks();
    for (const SignalsOfBlock& group : GroupsOf(blocks, ChannelsOf(scene.lanes))) {
        const SampleSpan samples = group.Stretch(scene.axis, 0, kWidth).samples;
        codes.resize(static_cast<std::size_t>(samples.count));
        for (const std::int16_t channel : group.channels) {
            group.of.block.block->ReadCodes(channel, samples.first, samples.count, codes.data());
            most += bench::ReadPass(codes.data(), codes.size());
        }
    }
    return most;
}

long PeakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) return 2;
    const std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
    Silent services;
    Document document(*library, services);
    WaveformView view(document);
    document.SetAllSignals(true);
    view.SetLanes(true);
    if (count > 4) {
        ShownSettings shown;
        shown.filters[GroupOf(u"uV").name] = {
            .highPass = std::atof(arguments[2]), .lowPass = std::atof(arguments[3]), .notch = std::atof(arguments[4])};
        document.ShowAs(shown);
    }
    const double opening = bench::Seconds([&] { document.OpenFile(FromUtf8OrLatin1(arguments[1]), {}); });
    if (!document.Block().block) return 1;
    view.BlockLoaded();
    const double fitting = bench::Seconds([&] { view.Arrange(kWidth, kHeight); });
    std::printf("%d signals, %zu blocks; opened in %.1f ms, fitted in %.1f ms, %ld MiB\n", document.SignalCount(),
                document.OtherBlocks().size() + 1, opening * 1e3, fitting * 1e3, PeakMemory());
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    GraphPicture picture;
    picture.SetPixels(pixels.data(), kWidth, kHeight);
    const auto scene = [&] {
        GraphScene made{document.Block(), view.Axis(), view.GetLanes(), view.Extremes()};
        made.others = view.OtherBlocks();
        return made;
    };
    const auto draw = [&] { return bench::Seconds([&] { picture.Draw(scene()); }) * 1e3; };
    const double whole = document.Block().sampleCount / document.Block().sampleRate;
    std::printf("%10s %10s %10s %10s %10s %10s %10s %6s\n", "page s", "pass ms", "page ms", "again ms", "page/pass",
                "read/pass", "lanes ms", "MiB");
    volatile int seen = 0;
    for (double page = 1.0; page * 10.0 < whole; page *= 3.0) {
        view.SelectPage(page);
        std::vector<double> passes, pages, again, ratios, readRatios;
        for (int round = 0; round < 7; ++round) {
            view.ScrollBy(view.Axis().PageShift(2));
            passes.push_back(bench::Seconds([&] { seen = ReadVisible(scene()); }) * 1e3);
            pages.push_back(draw());
            again.push_back(draw());
            ratios.push_back(pages.back() / passes.back());
            readRatios.push_back((pages.back() - again.back()) / passes.back());
        }
        const double lanes = bench::Seconds([&] {
            while (view.ScrollLanes(view.LanesOfChannels().Layout().Visible()).redraw) draw();
        });
        view.ScrollLanes(-document.SignalCount());
        std::printf("%10.0f %10.2f %10.2f %10.2f %10.2f %10.2f %10.1f %6ld\n", page, bench::Median(passes),
                    bench::Median(pages), bench::Median(again), bench::Median(ratios), bench::Median(readRatios),
                    lanes * 1e3, PeakMemory());
        view.GoToPage(0);
    }
    return 0;
}
