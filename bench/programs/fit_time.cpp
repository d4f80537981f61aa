// How long it takes until all columns of a fitted block are known, against reading the file once; nothing of the file
// is in the system's cache before either:
//     fit_time FILE [ROUNDS]
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "BenchData.h"
#include "base/Text.h"
#include "norvik/RecordingLibrary.h"
#include "view/ExtremesCache.h"

using namespace quillon;

namespace {

void DropCache(const char* path) {
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    ::fsync(file);
    ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    ::close(file);
}

void ReadThrough(const char* path) {
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    std::vector<char> piece(std::size_t{256} << 10);
    while (::read(file, piece.data(), piece.size()) > 0) {
    }
    ::close(file);
}

void Fit(RecordingBlock& block) {
    ExtremesCache extremes;
    std::vector<std::int16_t> channels(static_cast<std::size_t>(block.ChannelCount()));
    std::iota(channels.begin(), channels.end(), std::int16_t{1});
    constexpr std::int32_t run = 2 * ExtremesCache::kCoarseCell;
    SampleSpan missing{1, block.SampleCount() - 1};
    while (missing.count > 0 && extremes.Fill(block, channels, missing, run, ExtremesCache::Eviction::Allowed)) {
        const std::int32_t known = extremes.KnownTo(block, channels, missing, run);
        missing = {known, missing.End() - known};
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) return 2;
    const int rounds = count > 2 ? std::max(std::atoi(arguments[2]), 1) : 5;
    const std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    if (!library->OpenRecording(FromUtf8OrLatin1(arguments[1]), recording)) return 1;
    const std::shared_ptr<RecordingBlock> block = recording->GetBlock(1);
    block->Prepare();
    for (const bool cold : {true, false}) {
        std::vector<double> ratios;
        std::vector<double> passes;
        for (int round = 0; round < rounds; ++round) {
            if (cold) DropCache(arguments[1]);
            const double pass = bench::Seconds([&] { ReadThrough(arguments[1]); });
            if (cold) DropCache(arguments[1]);
            ratios.push_back(bench::Seconds([&] { Fit(*block); }) / pass);
            passes.push_back(pass);
        }
        std::printf("%s: read %.0f ms, fitted %.2f of it\n", cold ? "cold" : "warm", bench::Median(passes) * 1e3,
                    bench::Median(ratios));
    }
    return 0;
}
