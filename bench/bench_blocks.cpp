#include <bit>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "BenchData.h"
#include "base/LittleEndian.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/FrameBlock.h"
#include "norvik/private/PieceBuffer.h"
#include "norvik/private/RecordBlock.h"

/// Extremes of blocks of every shape, made by hand over files of bare samples. `ratio` is always that of the time to
/// one read pass of the same bytes.
namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSamples = std::size_t{96} << 20;
constexpr std::int32_t kRun = 100;

/// A file of noise in the temporary folder, stored as `kind`; removed at the end.
class NoiseFile {
  public:
    explicit NoiseFile(SampleKind kind) : m_path(fs::temp_directory_path() / "quillon_bench.noise") {
        std::ofstream file(m_path, std::ios::binary);
        const auto samples = NoiseSamples(kSamples);
        std::uint32_t random = 3;
        std::string bytes;
        for (std::size_t at = 0; at < kSamples; ++at) {
            random = random * 1664525U + 1013904223U;
            Append(bytes, kind, samples[at], random >> 16);
            if (bytes.size() < (1U << 20U) && at + 1 < kSamples) continue;
            file << bytes;
            bytes.clear();
        }
        file.close();
        Bilingual reason;
        m_source = OpenFileSource(m_path.u16string(), reason);
        if (m_source == nullptr) throw std::runtime_error("the noise cannot be opened");
    }
    ~NoiseFile() {
        std::error_code error;
        fs::remove(m_path, error);
    }
    NoiseFile(const NoiseFile&) = delete;
    NoiseFile& operator=(const NoiseFile&) = delete;

    [[nodiscard]] const std::shared_ptr<ByteSource>& Source() const { return m_source; }

    /// Reads `bytes` and does the least that can be done with them.
    int ReadAll(std::uint64_t bytes) {
        int sum = 0;
        for (std::uint64_t at = 0; at < bytes; at += kPieceBytes) {
            const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kPieceBytes, bytes - at));
            sum += ReadPass(reinterpret_cast<const std::int16_t*>(m_piece.Read(*m_source, at, size)), size / 2);
        }
        return sum;
    }

  private:
    static void Append(std::string& bytes, SampleKind kind, std::int16_t code, std::uint32_t fraction) {
        const auto wide = (static_cast<std::uint32_t>(code) << 16U) | (fraction & 0xFFFFU);
        const float single = static_cast<float>(static_cast<std::int32_t>(wide)) / 2147483648.0F;
        const auto add = [&bytes](std::uint64_t number, std::size_t size) {
            for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
        };
        switch (kind) {
            case SampleKind::Unsigned8: return add(wide >> 24U, 1);
            case SampleKind::Int16: return add(wide >> 16U, 2);
            case SampleKind::Int24: return add(wide >> 8U, 3);
            case SampleKind::Int32: return add(wide, 4);
            case SampleKind::Float32: return add(std::bit_cast<std::uint32_t>(single), 4);
            case SampleKind::Float64: return add(std::bit_cast<std::uint64_t>(static_cast<double>(single)), 8);
            default: return;
        }
    }

    fs::path m_path;
    std::shared_ptr<ByteSource> m_source;
    PieceBuffer m_piece;
};

NoiseFile& SixteenBits() {
    static NoiseFile file(SampleKind::Int16);
    return file;
}

BlockDescription Describe(std::size_t channels) {
    BlockDescription description;
    description.sampleRate = 1000.0;
    description.sampleCount = static_cast<std::int32_t>(kSamples / channels);
    description.channels = std::make_shared<const std::vector<ChannelDescription>>(channels);
    return description;
}

std::unique_ptr<FileBlock> MakeFrames(const NoiseFile& file, SampleKind kind, std::size_t channels) {
    return std::make_unique<FrameBlock>(file.Source(), FrameLayout{kind, 0, channels * SampleBytes(kind), 0},
                                        Describe(channels));
}

std::unique_ptr<FileBlock> MakeRecords(const NoiseFile& file, std::size_t channels, std::size_t samplesPerRecord,
                                       std::size_t sampleBytes) {
    RecordLayout layout;
    layout.recordBytes = samplesPerRecord * channels * sampleBytes;
    layout.samplesPerRecord = samplesPerRecord;
    layout.kind = sampleBytes == 2 ? SampleKind::Int16 : SampleKind::Int24;
    layout.units.resize(channels);
    for (std::size_t channel = 0; channel < channels; ++channel)
        layout.offsets.push_back(channel * samplesPerRecord * sampleBytes);
    BlockDescription description = Describe(channels);
    const auto record = static_cast<std::int32_t>(samplesPerRecord);
    description.sampleCount = description.sampleCount / record * record;
    return std::make_unique<RecordBlock>(std::move(description), file.Source(), 0,
                                         std::make_shared<const RecordLayout>(std::move(layout)));
}

/// Reduces all channels, `stretch` samples of each per call, as the summary of a block asks for them.
class Reducing {
  public:
    Reducing(RecordingBlock& block, std::int32_t stretch, std::int32_t run)
        : m_block(block), m_stretch(std::max(stretch / run * run, run)), m_run(run) {
        for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
            m_channels.push_back(channel);
            m_results.emplace_back(static_cast<std::size_t>(block.SampleCount() / run + 1));
        }
        m_out.resize(m_channels.size());
    }
    void All() {
        const std::int32_t samples = m_block.SampleCount();
        for (std::int32_t first = 0; first < samples; first += std::min(m_stretch, samples - first)) {
            for (std::size_t at = 0; at < m_out.size(); ++at) m_out[at] = m_results[at].data() + first / m_run;
            m_block.ColumnExtremes(m_channels, first, std::min(m_stretch, samples - first), m_run, m_out);
        }
    }

  private:
    RecordingBlock& m_block;
    std::int32_t m_stretch;
    std::int32_t m_run;
    std::vector<std::int16_t> m_channels;
    std::vector<std::vector<RunExtremes>> m_results;
    std::vector<RunExtremes*> m_out;
};

/// `stretchBytes` 0: the whole block by one call.
void Reduce(benchmark::State& state, NoiseFile& file, RecordingBlock& block, std::int64_t stretchBytes,
            std::size_t frameBytes, std::int32_t run) {
    block.Prepare();
    const auto bytes = static_cast<std::size_t>(block.SampleCount()) * frameBytes;
    const auto stretch = static_cast<std::size_t>(stretchBytes) / frameBytes;
    Reducing reducing(block, stretchBytes == 0 ? block.SampleCount() : static_cast<std::int32_t>(stretch), run);
    Compare(
        state, bytes, false, [&] { reducing.All(); }, [&] { benchmark::DoNotOptimize(file.ReadAll(bytes)); });
}

void Frames(benchmark::State& state) {
    const auto channels = static_cast<std::size_t>(state.range(0));
    const auto block = MakeFrames(SixteenBits(), SampleKind::Int16, channels);
    Reduce(state, SixteenBits(), *block, state.range(2), 2 * channels, static_cast<std::int32_t>(state.range(1)));
}

void Records(benchmark::State& state) {
    const auto channels = static_cast<std::size_t>(state.range(0));
    const auto block = MakeRecords(SixteenBits(), channels, static_cast<std::size_t>(state.range(1)), 2);
    Reduce(state, SixteenBits(), *block, state.range(3), 2 * channels, static_cast<std::int32_t>(state.range(2)));
}

void Wide(benchmark::State& state, SampleKind kind, bool records) {
    const auto channels = static_cast<std::size_t>(state.range(0));
    NoiseFile file(kind);
    const std::size_t sampleBytes = SampleBytes(kind);
    const auto block = records ? MakeRecords(file, channels, 1000, sampleBytes) : MakeFrames(file, kind, channels);
    Reduce(state, file, *block, 1 << 20, sampleBytes * channels, kRun);
    // What opening takes, before anything can be drawn.
    std::vector<double> ratios;
    for (int round = 0; round < 5; ++round) {
        const auto unprepared =
            records ? MakeRecords(file, channels, 1000, sampleBytes) : MakeFrames(file, kind, channels);
        const double ours = Seconds([&] { unprepared->Prepare(); });
        ratios.push_back(ours / Seconds([&] { benchmark::DoNotOptimize(file.ReadAll(kSamples * sampleBytes)); }));
    }
    state.counters["scales"] = Median(ratios);
}

void Rounds(benchmark::internal::Benchmark* it) {
    it->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);
}

BENCHMARK(Frames)
    ->ArgNames({"channels", "run", "stretch"})
    ->ArgsProduct({{1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 16, 19, 24, 29, 32}, {100, 500, 2000}, {0}})
    ->ArgsProduct({{1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 16, 19, 24, 29, 32}, {100}, {1 << 20}})
    ->Apply(Rounds);
BENCHMARK(Records)
    ->ArgNames({"channels", "record", "run", "stretch"})
    ->ArgsProduct({{1, 4, 8, 19, 32}, {256, 1000}, {100, 2000}, {0}})
    ->ArgsProduct({{1, 4, 8, 19, 32}, {256, 1000}, {100}, {1 << 20}})
    ->Apply(Rounds);

void WideRounds(benchmark::internal::Benchmark* it) {
    it->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5)->ArgName("channels")->Arg(2)->Arg(32);
}
BENCHMARK_CAPTURE(Wide, int24, SampleKind::Int24, false)->Apply(WideRounds);
BENCHMARK_CAPTURE(Wide, int32, SampleKind::Int32, false)->Apply(WideRounds);
BENCHMARK_CAPTURE(Wide, float32, SampleKind::Float32, false)->Apply(WideRounds);
BENCHMARK_CAPTURE(Wide, float64, SampleKind::Float64, false)->Apply(WideRounds);
BENCHMARK_CAPTURE(Wide, records24, SampleKind::Int24, true)->Apply(WideRounds);

}  // namespace
}  // namespace quillon::bench
