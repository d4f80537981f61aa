#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "../samples/BenchRecordings.h"
#include "BenchData.h"
#include "cli/CommandSupport.h"
#include "export/KVExport.h"
#include "export/QL_Export.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TextWriter.h"

/// Exports against a plain copy of as many bytes as they write.
namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

/// A folder of its own, removed at the end.
struct Folder {
    Folder() { fs::create_directories(path); }
    ~Folder() { fs::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] std::u16string File(const char* name) const { return (path / name).u16string(); }
    fs::path path = fs::temp_directory_path() / "quillon-bench-export";
};

/// A plain copy in pieces of 256 KiB, as the exporters write them.
void CopyFile(const fs::path& from, const fs::path& to) {
    const auto close = [](std::FILE* file) { std::fclose(file); };
    const std::unique_ptr<std::FILE, decltype(close)> in(std::fopen(from.c_str(), "rb"), close);
    const std::unique_ptr<std::FILE, decltype(close)> out(std::fopen(to.c_str(), "wb"), close);
    std::setvbuf(in.get(), nullptr, _IONBF, 0);
    std::setvbuf(out.get(), nullptr, _IONBF, 0);
    std::vector<char> piece(256 * 1024);
    for (std::size_t size = 0; (size = std::fread(piece.data(), 1, piece.size(), in.get())) > 0;) {
        if (std::fwrite(piece.data(), 1, size, out.get()) != size) throw std::runtime_error("the disk is full");
    }
}

/// "speedup" is the share of the plain copy's speed that the export reaches.
void ExportAgainstCopy(benchmark::State& state, bool edfSource, const char* target) {
    const Folder folder;
    const std::u16string source = folder.File(edfSource ? "source.edf" : "source.bin");
    {
        std::ofstream file(fs::path(source), std::ios::binary);
        edfSource ? samples::WriteBenchEdf(file, 3600) : samples::WriteBenchBin(file, 3600);
    }
    cli::SilentServices services;
    KVExport exporter(services, {MakeOutputFile});
    const auto library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    if (!library->OpenRecording(source, recording)) return state.SkipWithError("the recording cannot be opened");
    const auto block = recording->GetBlock(1);
    block->Prepare();
    const std::u16string written = folder.File(target);
    exporter.Export(block.get(), written, 1, 0, 0);
    const fs::path model = folder.File("model");
    fs::rename(written, model);
    Compare(
        state, fs::file_size(model), true,
        [&] {
            if (!exporter.Export(block.get(), written, 1, 0, 0)) throw std::runtime_error("the export failed");
        },
        [&] { CopyFile(model, folder.File("copy")); });
}

/// "ratio" is the time of a text export over that of writing as many bytes.
void TextAgainstWrite(benchmark::State& state) {
    const Folder folder;
    const std::u16string source = folder.File("source.bin");
    {
        std::ofstream file(fs::path(source), std::ios::binary);
        samples::WriteBenchBin(file, 240);
    }
    cli::SilentServices services;
    const auto library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    if (!library->OpenRecording(source, recording)) return state.SkipWithError("the recording cannot be opened");
    const auto block = recording->GetBlock(1);
    block->Prepare();
    const std::u16string written = folder.File("out.txt");
    const ChannelSlots slots;
    const FormatOptions format;
    TextExportContext context{slots, format, false, services, [](const std::u16string& target, std::u16string& error) {
                                  return CreateTextFile(target, Language::English, error);
                              }};
    const TextExportSettings settings{1, 0, 1, 1, 1, 1, 1, 0};
    const auto write = [&] {
        if (!ExportText(written, *block, 1, block->SampleCount(), settings, context) || !context.failures.empty())
            throw std::runtime_error("the export failed");
    };
    write();
    const auto size = static_cast<std::size_t>(fs::file_size(fs::path(written)));
    const std::vector<char> piece(256 * 1024, '1');
    Compare(state, size, false, write, [&] {
        std::FILE* out = std::fopen((folder.path / "bytes").c_str(), "wb");
        std::setvbuf(out, nullptr, _IONBF, 0);
        std::size_t done = 0;
        while (done < size) done += std::fwrite(piece.data(), 1, std::min(piece.size(), size - done), out);
        std::fclose(out);
    });
}

void Rounds(benchmark::internal::Benchmark* it) {
    it->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7);
}

BENCHMARK_CAPTURE(ExportAgainstCopy, bin_to_bin, false, "out.bin")->Apply(Rounds);
BENCHMARK_CAPTURE(ExportAgainstCopy, bin_to_wav, false, "out.wav")->Apply(Rounds);
BENCHMARK_CAPTURE(ExportAgainstCopy, bin_to_edf, false, "out.edf")->Apply(Rounds);
BENCHMARK_CAPTURE(ExportAgainstCopy, edf_to_bin, true, "out.bin")->Apply(Rounds);
BENCHMARK_CAPTURE(ExportAgainstCopy, edf_to_edf, true, "out.edf")->Apply(Rounds);

BENCHMARK(TextAgainstWrite)->Apply(Rounds);

}  // namespace
}  // namespace quillon::bench
