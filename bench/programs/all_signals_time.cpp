// Time of turning pages with the signals of all blocks of a stretch in lanes, against reading once the part of the file
// in which the visible samples lie:
//     all_signals_time FILE
// "page" shows the next page, whose samples are not known yet; "all lanes" scrolls through all lanes at the same page.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "BenchData.h"
#include "base/Text.h"
#include "data/Document.h"
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

/// Reads a share of a file from a place on.
void ReadPart(const char* path, double place, double share) {
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    const auto size = static_cast<double>(::lseek(file, 0, SEEK_END));
    std::vector<char> piece(std::size_t{256} << 10);
    auto at = static_cast<off_t>(place * size);
    const auto end = static_cast<off_t>((place + share) * size);
    for (; at < end; at += static_cast<off_t>(piece.size())) {
        if (::pread(file, piece.data(), std::min(piece.size(), static_cast<std::size_t>(end - at)), at) <= 0) break;
    }
    ::close(file);
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
    const double opening = bench::Seconds([&] { document.OpenFile(FromUtf8OrLatin1(arguments[1]), {}); });
    if (!document.Block().block) return 1;
    view.BlockLoaded();
    const double fitting = bench::Seconds([&] { view.Arrange(kWidth, kHeight); });
    std::printf("%d signals, %zu blocks; opened in %.1f ms, fitted in %.1f ms, %ld MiB\n", document.SignalCount(),
                document.OtherBlocks().size() + 1, opening * 1e3, fitting * 1e3, PeakMemory());
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    GraphPicture picture;
    picture.SetPixels(pixels.data(), kWidth, kHeight);
    const auto draw = [&] {
        GraphScene scene{document.Block(), view.Axis(), view.GetLanes(), view.Extremes()};
        scene.others = view.OtherBlocks();
        picture.Draw(scene);
    };
    const double whole = document.Block().sampleCount / document.Block().sampleRate;
    std::printf("%10s %10s %10s %10s %10s %10s\n", "page s", "read ms", "page ms", "ratio", "lanes ms", "MiB");
    for (double page = 1.0; page * 10.0 < whole; page *= 3.0) {
        view.SelectPage(page);
        std::vector<double> reads, pages, ratios;
        for (int round = 0; round < 7; ++round) {
            view.ScrollBy(view.Axis().PageShift(2));
            const double place = static_cast<double>(view.Axis().Visible().first) / view.Axis().SampleCount();
            ReadPart(arguments[1], place, page / whole);
            reads.push_back(bench::Seconds([&] { ReadPart(arguments[1], place, page / whole); }) * 1e3);
            pages.push_back(bench::Seconds(draw) * 1e3);
            ratios.push_back(pages.back() / reads.back());
        }
        const double lanes = bench::Seconds([&] {
            while (view.ScrollLanes(view.LanesOfChannels().Layout().Visible()).redraw) draw();
        });
        view.ScrollLanes(-document.SignalCount());
        std::printf("%10.0f %10.2f %10.2f %10.2f %10.1f %10ld\n", page, bench::Median(reads), bench::Median(pages),
                    bench::Median(ratios), lanes * 1e3, PeakMemory());
        view.GoToPage(0);
    }
    return 0;
}
