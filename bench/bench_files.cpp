#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>

#include "../samples/BenchRecordings.h"
#include "../samples/GdfWriter.h"
#include "../samples/SoundWriters.h"
#include "BenchData.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/ReadRecording.h"
#include "nsp/NspExtrema.h"
#include "view/ExtremesCache.h"

namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

/// A recording in the temporary folder, in the page cache once written, and removed at the end.
class BenchFile {
  public:
    /// `header`: the content of the file that the recording is opened by, where the samples lie in another;
    /// `extension`: that of its name.
    template <typename Write>
    BenchFile(const char* name, Write write, const std::string& header = {}, const char* extension = ".vhdr")
        : m_path(fs::temp_directory_path() / name), m_header(m_path) {
        std::ofstream file(m_path, std::ios::binary);
        write(file);
        file.close();
        if (!header.empty()) std::ofstream(m_header.replace_extension(extension), std::ios::binary) << header;
        m_source = Open(m_path);
        const std::u16string opened = m_header.u16string();
        m_block = ReadRecording({Open(m_header), opened, FilesBeside(opened, Language::English)}).blocks.front();
        m_block->Prepare();
    }
    ~BenchFile() {
        std::error_code error;
        fs::remove(m_path, error);
        fs::remove(m_header, error);
    }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;

    [[nodiscard]] ByteSource& Source() const { return *m_source; }
    [[nodiscard]] RecordingBlock& Block() const { return *m_block; }

  private:
    static std::shared_ptr<ByteSource> Open(const fs::path& path) {
        Bilingual reason;
        std::shared_ptr<ByteSource> source = OpenFileSource(path.u16string(), reason);
        if (source == nullptr) throw std::runtime_error("the bench recording cannot be opened");
        return source;
    }

    fs::path m_path;
    fs::path m_header;
    std::shared_ptr<ByteSource> m_source;
    std::shared_ptr<RecordingBlock> m_block;
};

/// The same reads and the least that can be done with what they bring.
int ReadPieces(ByteSource& source, std::vector<std::int16_t>& piece, std::uint64_t bytes) {
    int sum = 0;
    for (std::uint64_t at = 0; at < bytes; at += kPieceBytes) {
        sum += ReadPass(piece.data(), source.ReadAt(at, piece.data(), kPieceBytes) / 2);
    }
    return sum;
}

/// All channels of a block, and room for the results of all their runs.
struct Columns {
    Columns(const RecordingBlock& block, std::int32_t run) {
        for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
            channels.push_back(channel);
            results.emplace_back(static_cast<std::size_t>(block.SampleCount() / run + 1));
            out.push_back(results.back().data());
        }
    }
    std::vector<std::int16_t> channels;
    std::vector<std::vector<RunExtremes>> results;
    std::vector<RunExtremes*> out;
};

void FileExtremes(benchmark::State& state, const BenchFile& file) {
    const auto run = static_cast<std::int32_t>(state.range(0));
    RecordingBlock& block = file.Block();
    const std::int32_t count = block.SampleCount();
    const Columns columns(block, run);
    std::vector<std::int16_t> piece(kPieceBytes / 2);
    Compare(
        state, file.Source().Size(), false, [&] { block.ColumnExtremes(columns.channels, 0, count, run, columns.out); },
        [&] { benchmark::DoNotOptimize(ReadPieces(file.Source(), piece, file.Source().Size())); });
}

void BinFile(benchmark::State& state) {
    const BenchFile file("quillon_bench.bin", [](std::ostream& to) { samples::WriteBenchBin(to, 4700); });
    FileExtremes(state, file);
}

void EdfFile(benchmark::State& state) {
    const BenchFile file("quillon_bench.edf", [](std::ostream& to) { samples::WriteBenchEdf(to, 3600); });
    FileExtremes(state, file);
}

/// The same bytes in every orientation and number format.
void BrainVisionFile(benchmark::State& state, const std::string& orientation, const std::string& format) {
    std::string header =
        "Brain Vision Data Exchange Header File Version 1.0\n[Common Infos]\nDataFile=quillon_bench.eeg\n"
        "SamplingInterval=1000\nNumberOfChannels=32\nDataOrientation=" +
        orientation + "\n[Binary Infos]\nBinaryFormat=" + format + "\n[Channel Infos]\n";
    for (std::size_t at = 1; at <= samples::kBenchChannels; ++at) header += "Ch" + std::to_string(at) + "=x,,0.1\n";
    const BenchFile file("quillon_bench.eeg", samples::WriteBenchFrames, header);
    FileExtremes(state, file);
}

/// The same bytes in a format of WFDB, as the signal lines of a header tell it.
void WfdbFile(benchmark::State& state, const std::string& format) {
    std::string header = "quillon_bench 32 1000\n";
    for (std::size_t at = 0; at < samples::kBenchChannels; ++at) header += "quillon_bench.dat " + format + "\n";
    const BenchFile file("quillon_bench.dat", samples::WriteBenchFrames, header, ".hea");
    FileExtremes(state, file);
}

/// The same bytes behind other headers.
void PlainFile(benchmark::State& state, const std::function<samples::Bytes()>& header) {
    const BenchFile file("quillon_bench.snd", [&](std::ostream& to) {
        to << header().Get();
        samples::WriteBenchFrames(to);
    });
    FileExtremes(state, file);
}

constexpr std::uint32_t kPlainFrames = 4700 * samples::kBenchRate;

/// `type`: of the samples; records of `perRecord` of them.
samples::Bytes GdfOf(std::uint32_t type, std::uint32_t perRecord) {
    samples::GdfChannel channel;
    channel.samplesPerRecord = perRecord;
    channel.type = type;
    const std::vector<samples::GdfChannel> channels(samples::kBenchChannels, channel);
    return samples::GdfHeader("2.10", channels, kPlainFrames / perRecord, {perRecord, samples::kBenchRate});
}

samples::Bytes AiffOf(std::uint32_t bits) {
    const std::uint32_t bytes = kPlainFrames * samples::kBenchChannels * 2;
    const std::uint32_t frames = kPlainFrames * 16 / bits;
    samples::Bytes chunks = samples::AiffCommon(samples::kBenchChannels, frames, bits, samples::kBenchRate);
    chunks.Text("SSND").Big(bytes + 8, 4).Zeros(8);
    return samples::AiffFile("AIFF", chunks);
}

/// The route that the one-pass reduction stands in for: every channel's samples read by themselves, then the two
/// library calls for every run. `ratio` here is how many times longer it takes.
void LiteralRoute(benchmark::State& state) {
    const BenchFile file("quillon_bench.bin", [](std::ostream& to) { samples::WriteBenchBin(to, 4700); });
    const auto run = static_cast<std::int32_t>(state.range(0));
    RecordingBlock& block = file.Block();
    const std::int32_t count = block.SampleCount();
    const Columns columns(block, run);
    std::vector<std::int16_t> samples(static_cast<std::size_t>(count));
    const auto literal = [&] {
        for (const std::int16_t channel : columns.channels) {
            block.ReadCodes(channel, 0, count, samples.data());
            for (std::int32_t at = 0; at < count; at += run) {
                int position = 0;
                const std::int32_t length = std::min(run, count - at);
                benchmark::DoNotOptimize(nsp::nspwMaxExt(samples.data() + at, length, &position));
                benchmark::DoNotOptimize(nsp::nspwMinExt(samples.data() + at, length, &position));
            }
        }
    };
    Compare(state, file.Source().Size(), false, literal,
            [&] { block.ColumnExtremes(columns.channels, 0, count, run, columns.out); });
}

/// A view of 1500 columns with the summary of what it shows (`ratio`: of the time without it), the first such view,
/// which makes the summary (`ratio`: of reading the same part of the file), and what the summary takes of the data.
constexpr std::int32_t kColumns = 1500;

/// A view of kColumns runs on the recording, and the summary that serves it.
struct SummaryView {
    explicit SummaryView(std::int32_t samplesPerColumn) : run(samplesPerColumn) {}
    void Draw() { cache.ColumnExtremes(block, columns.channels, 1, count, run, columns.out); }
    void DrawDirectly() { block.ColumnExtremes(columns.channels, 1, count, run, columns.out); }
    [[nodiscard]] std::size_t Bytes() const { return static_cast<std::size_t>(count) * columns.channels.size() * 2; }

    const BenchFile file{"quillon_bench.bin", [](std::ostream& to) { samples::WriteBenchBin(to, 4700); }};
    RecordingBlock& block = file.Block();
    std::int32_t run;
    std::int32_t count = std::min(kColumns * run - 1, block.SampleCount() - 1);
    Columns columns{block, run};
    ExtremesCache cache;
};

void SummaryMade(benchmark::State& state) {
    SummaryView view(static_cast<std::int32_t>(state.range(0)));
    std::vector<std::int16_t> piece(kPieceBytes / 2);
    Compare(
        state, view.Bytes(), false,
        [&] {
            view.cache.Reset();
            view.Draw();
        },
        [&] { benchmark::DoNotOptimize(ReadPieces(view.file.Source(), piece, view.Bytes())); });
    state.counters["percent"] = 100.0 * static_cast<double>(view.cache.Bytes()) / static_cast<double>(view.Bytes());
}

void SummaryUsed(benchmark::State& state) {
    SummaryView view(static_cast<std::int32_t>(state.range(0)));
    view.Draw();
    Compare(
        state, view.Bytes(), false, [&] { view.Draw(); }, [&] { view.DrawDirectly(); });
}

void Rounds(benchmark::internal::Benchmark* it) {
    it->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9)->ArgName("run");
}

BENCHMARK(BinFile)->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK(EdfFile)->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK_CAPTURE(BrainVisionFile, multiplexed, "MULTIPLEXED", "INT_16")->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK_CAPTURE(BrainVisionFile, vectorized, "VECTORIZED", "INT_16")->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK_CAPTURE(BrainVisionFile, wide, "MULTIPLEXED", "INT_32")->Apply(Rounds)->Arg(100);
BENCHMARK_CAPTURE(BrainVisionFile, wide_vectorized, "VECTORIZED", "INT_32")->Apply(Rounds)->Arg(100);
BENCHMARK_CAPTURE(WfdbFile, 16, "16")->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK_CAPTURE(WfdbFile, 212, "212")->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK_CAPTURE(WfdbFile, 16x4, "16x4")->Apply(Rounds)->Arg(100);
BENCHMARK_CAPTURE(WfdbFile, 24, "24")->Apply(Rounds)->Arg(100);
BENCHMARK_CAPTURE(WfdbFile, 8, "8")->Apply(Rounds)->Arg(100);
BENCHMARK_CAPTURE(WfdbFile, 310, "310")->Apply(Rounds)->Arg(100);

BENCHMARK_CAPTURE(PlainFile, gdf_frames, [] { return GdfOf(3, 1); })->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK_CAPTURE(PlainFile, gdf_records, [] { return GdfOf(3, 1000); })->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK_CAPTURE(PlainFile, gdf_unsigned, [] { return GdfOf(4, 1); })->Apply(Rounds)->Arg(100);
BENCHMARK_CAPTURE(PlainFile, aiff_16, [] { return AiffOf(16); })->Apply(Rounds)->Arg(10)->Arg(100)->Arg(2000);
BENCHMARK_CAPTURE(PlainFile, aiff_32, [] { return AiffOf(32); })->Apply(Rounds)->Arg(100);

BENCHMARK(SummaryMade)->Apply(Rounds)->Arg(2000);
BENCHMARK(SummaryUsed)->Apply(Rounds)->Arg(100)->Arg(500)->Arg(2000);

BENCHMARK(LiteralRoute)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->ArgName("run")
    ->Arg(10)
    ->Arg(2000);

}  // namespace
}  // namespace quillon::bench
