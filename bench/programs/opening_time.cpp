// How long a recording takes until its first block can be drawn, and how long the longest step of what is read behind
// it takes: opening_time [SECONDS] FILE... Steps are made for so many seconds (1) and for the rest of the file not.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "../BenchData.h"
#include "base/Text.h"
#include "norvik/RecordingLibrary.h"

int main(int count, char** arguments) {
    using namespace quillon;
    int first = 1;
    double limit = 1.0;
    if (count > 2 && std::atof(arguments[1]) > 0.0) limit = std::atof(arguments[first++]);
    for (int at = first; at < count; ++at) {
        const auto library = MakeRecordingLibrary(Language::English);
        std::shared_ptr<Recording> recording;
        std::shared_ptr<RecordingBlock> block;
        const double opened = bench::Seconds([&] { library->OpenRecording(Utf16(arguments[at]), recording); });
        if (!recording) {
            std::printf("%s: %s\n", arguments[at], Utf8(library->LastErrorText()).c_str());
            continue;
        }
        const double prepared = bench::Seconds([&] {
            block = recording->GetBlock(1);
            block->PrepareQuickly();
        });
        std::printf("%s\n  opening %.1f ms, first block %.1f ms, %d blocks, %.1f %% read\n", arguments[at],
                    opened * 1e3, prepared * 1e3, recording->BlockCount(), recording->ReadShare() * 100.0);
        const auto run = [&](const char* name, auto step, auto share) {
            double longest = 0.0;
            double sum = 0.0;
            int steps = 0;
            for (bool more = true; more && sum < limit; ++steps) {
                const double took = bench::Seconds([&] { more = step(); });
                longest = std::max(longest, took);
                sum += took;
            }
            std::printf("  %s: %d steps in %.2f s, longest %.1f ms, %.1f %% done, %d blocks\n", name, steps, sum,
                        longest * 1e3, share() * 100.0, recording->BlockCount());
        };
        run(
            "reading on", [&] { return recording->ReadMore(1, 0); }, [&] { return recording->ReadShare(); });
        run(
            "scales", [&] { return block->PrepareMore(); }, [&] { return block->PreparedShare(); });
    }
    return 0;
}
