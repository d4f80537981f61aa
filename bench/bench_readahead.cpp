#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <numeric>
#include <thread>

#include "../samples/BenchRecordings.h"
#include "BenchData.h"
#include "nsp/RunReducer.h"

/// Whether a second thread that only reads ahead is worth having: `ratio` is the time of a summary (extremes of 100
/// samples, 32 channels) to one read pass of the file on one thread. Run it on two processors: without taskset.
namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSeconds = 4700;
constexpr std::size_t kPiece = std::size_t{256} * 1024;  // whole frames of 64 bytes

class RawFile {
  public:
    RawFile() : m_path(fs::temp_directory_path() / "quillon_bench.ahead") {
        std::ofstream file(m_path, std::ios::binary);
        const auto minute = samples::BenchMinute();
        for (std::size_t second = 0; second < kSeconds; ++second) file << samples::BenchSecond(minute, second).Get();
        file.close();
        m_descriptor = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
        ::fsync(m_descriptor);  // pages that are not written yet cannot be dropped
    }
    ~RawFile() {
        ::close(m_descriptor);
        std::error_code error;
        fs::remove(m_path, error);
    }
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;

    [[nodiscard]] static std::size_t Pieces() {
        return kSeconds * samples::kBenchChannels * samples::kBenchRate * 2 / kPiece;
    }
    void DropCache() const { ::posix_fadvise(m_descriptor, 0, 0, POSIX_FADV_DONTNEED); }
    void Read(std::size_t piece, std::int16_t* to) const {
        std::size_t done = 0;
        while (done < kPiece) {
            const auto part = ::pread(m_descriptor, reinterpret_cast<char*>(to) + done, kPiece - done,
                                      static_cast<off_t>(piece * kPiece + done));
            if (part <= 0) throw std::runtime_error("the bench file cannot be read");
            done += static_cast<std::size_t>(part);
        }
    }

  private:
    fs::path m_path;
    int m_descriptor = -1;
};

struct alignas(4096) Piece {
    std::array<std::int16_t, kPiece / 2> samples;
};

/// The queue of buffers between the thread that reads and the one that reduces.
class ReadAhead {
  public:
    explicit ReadAhead(const RawFile& file) : m_buffers(4), m_thread([this, &file] { Run(file); }) {}
    ~ReadAhead() { m_thread.join(); }
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    const std::int16_t* Take(std::size_t piece) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_read > piece; });
        return m_buffers[piece % m_buffers.size()].samples.data();
    }
    void Release() {
        const std::scoped_lock lock(m_mutex);
        ++m_released;
        m_changed.notify_all();
    }

  private:
    void Run(const RawFile& file) {
        for (std::size_t piece = 0; piece < RawFile::Pieces(); ++piece) {
            {
                std::unique_lock lock(m_mutex);
                m_changed.wait(lock, [&] { return piece < m_released + m_buffers.size(); });
            }
            file.Read(piece, m_buffers[piece % m_buffers.size()].samples.data());
            const std::scoped_lock lock(m_mutex);
            ++m_read;
            m_changed.notify_all();
        }
    }

    std::vector<Piece> m_buffers;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_read = 0;
    std::size_t m_released = 0;
    std::thread m_thread;
};

struct Summary {
    std::vector<std::vector<nsp::ExtremePair>> results{
        samples::kBenchChannels, std::vector<nsp::ExtremePair>(kSeconds* samples::kBenchRate / 100 + 1)};

    template <typename Take>
    void Make(const Take& take) {
        std::vector<std::size_t> selected(results.size());
        std::iota(selected.begin(), selected.end(), std::size_t{0});
        std::vector<nsp::ExtremePair*> out;
        for (auto& channel : results) out.push_back(channel.data());
        nsp::FrameRunReducer reducer(results.size(), selected, 100, out);
        for (std::size_t piece = 0; piece < RawFile::Pieces(); ++piece)
            take(piece, [&](const std::int16_t* frames) { reducer.Feed(frames, kPiece / 2 / results.size()); });
        reducer.Finish();
    }
};

void SummaryOf(benchmark::State& state, bool ahead) {
    const bool cold = state.range(0) != 0;
    const RawFile file;
    Summary summary;
    std::vector<Piece> buffer(1);
    std::int16_t* const own = buffer.front().samples.data();
    std::vector<double> ratios;
    for (auto _ : state) {
        if (cold) file.DropCache();
        const double ours = Seconds([&] {
            if (!ahead) {
                summary.Make([&](std::size_t piece, const auto& use) {
                    file.Read(piece, own);
                    use(own);
                });
                return;
            }
            ReadAhead reading(file);
            summary.Make([&](std::size_t piece, const auto& use) {
                use(reading.Take(piece));
                reading.Release();
            });
        });
        if (cold) file.DropCache();
        const double pass = Seconds([&] {
            for (std::size_t piece = 0; piece < RawFile::Pieces(); ++piece) {
                file.Read(piece, own);
                benchmark::DoNotOptimize(ReadPass(own, kPiece / 2));
            }
        });
        state.SetIterationTime(ours);
        ratios.push_back(ours / pass);
    }
    state.counters["ratio"] = Median(ratios);
}

void Rounds(benchmark::internal::Benchmark* it) {
    it->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7)->ArgName("cold")->Arg(0)->Arg(1);
}
BENCHMARK_CAPTURE(SummaryOf, one_thread, false)->Apply(Rounds);
BENCHMARK_CAPTURE(SummaryOf, read_ahead, true)->Apply(Rounds);

}  // namespace
}  // namespace quillon::bench
