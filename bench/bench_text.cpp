#include <array>
#include <charconv>
#include <cstdio>
#include <string>

#include "BenchData.h"
#include "format/FixedText.h"

namespace quillon::bench {
namespace {

constexpr std::size_t kValues = 1600000;

/// Values as channels have them: code x scale + offset.
const std::vector<float>& Values() {
    static const std::vector<float> values = [] {
        std::vector<float> made;
        for (const std::int16_t code : NoiseSamples(kValues)) {
            made.push_back(static_cast<float>(code) * 0.0125F + 0.5F);
        }
        return made;
    }();
    return values;
}

/// Every value followed by a tab.
template <typename WriteOne>
std::size_t WriteAll(std::vector<char>& buffer, WriteOne writeOne) {
    char* out = buffer.data();
    for (const float value : Values()) {
        out = writeOne(out, value);
        *out++ = '\t';
    }
    return static_cast<std::size_t>(out - buffer.data());
}

struct Printf {
    static char* Write(char* out, float value, int decimals) {
        return out + std::snprintf(out, FixedText::kRoom, "%.*f", decimals, static_cast<double>(value));
    }
};

struct ToChars {
    static char* Write(char* out, float value, int decimals) {
        return std::to_chars(out, out + FixedText::kRoom, value, std::chars_format::fixed, decimals).ptr;
    }
};

template <typename Baseline>
void FixedTextAgainst(benchmark::State& state) {
    const auto decimals = static_cast<int>(state.range(0));
    std::vector<char> ours(kValues * 24 + FixedText::kRoom);
    std::vector<char> theirs(ours.size());
    const FixedText text(decimals, '.');
    std::size_t ourSize = 0;
    std::size_t theirSize = 0;
    std::vector<double> seconds;
    const auto write = [&] {
        ourSize = WriteAll(ours, [&](char* out, float value) { return text.Write(out, value); });
    };
    Compare(
        state, Values().size() * sizeof(float), true, [&] { seconds.push_back(Seconds(write)); },
        [&] {
            theirSize = WriteAll(theirs, [&](char* out, float value) { return Baseline::Write(out, value, decimals); });
        });
    state.counters["ns/value"] = Median(seconds) * 1e9 / static_cast<double>(kValues);
    if (ourSize != theirSize || !std::equal(ours.data(), ours.data() + ourSize, theirs.data())) {
        state.SkipWithError("the texts differ");
    }
}

void TextRounds(benchmark::internal::Benchmark* it) {
    it->ArgName("decimals")
        ->Arg(2)
        ->Arg(4)
        ->Arg(5)
        ->Arg(6)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(7);
}

BENCHMARK(FixedTextAgainst<Printf>)->Apply(TextRounds);
BENCHMARK(FixedTextAgainst<ToChars>)->Apply(TextRounds);

}  // namespace
}  // namespace quillon::bench
