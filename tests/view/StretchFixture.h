#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <span>
#include <vector>

#include "format/QL_Format.h"
#include "support/FakeRecording.h"
#include "view/GraphScene.h"
#include "view/TracePicture.h"
#include "view/WaveformView.h"

namespace quillon::testing {

inline constexpr std::int32_t kWidth = 140;
inline constexpr std::int32_t kHeight = 200;
__extension__ using Wide = __int128;

/// Graphs of all signals of a stretch, on a free axis, and what a plain loop over the samples makes of them.
class Stretches : public ::testing::Test {
  protected:
    explicit Stretches(RecordingLibrary& library);
    void Open(const std::u16string& path);
    void LoadBlock(int block);
    [[nodiscard]] std::int32_t Any(std::int64_t below) {
        return static_cast<std::int32_t>(m_random() % static_cast<std::uint64_t>(below));
    }
    /// A page of any length from that many samples of the fastest block to the whole, at any place: at first also of a
    /// fraction of a sample of a slow block.
    void Show(double fewest = kWidth / 50.0);
    [[nodiscard]] GraphScene Scene();
    [[nodiscard]] std::vector<std::uint32_t> Drawn();
    /// The points of a signal in columns from .. to-1 by a plain loop over all its samples.
    [[nodiscard]] std::vector<TracePoint> Plain(const Signal& signal, std::int32_t from, std::int32_t to) const;
    /// Those of columns from .. to-1.
    [[nodiscard]] static std::vector<TracePoint> Within(std::span<const TracePoint> points, std::int32_t from,
                                                        std::int32_t to);
    void ExpectPlainColumns();
    /// Scrolled and drawn in slices it is what is drawn at once.
    void ExpectScrollingCopies();

    std::mt19937_64 m_random{51};
    FakeServices m_services;
    Document m_document;
    std::int32_t m_line = 1;  ///< of Scene
    WaveformView m_view{m_document};
    FormatOptions m_format;
    GridStyle m_gridStyle = GridStyle::Lines;
};

struct FakeFiles {
    FakeLibrary fakes;
};

/// The same of recordings in memory.
class FakeStretches : public FakeFiles, public Stretches {
  protected:
    FakeStretches() : Stretches(fakes) {}
    /// Noise with stretches of one value, of a few values and with spikes, so that extremes occur several times and lie
    /// in cells at the edges of columns; marks.
    std::shared_ptr<FakeBlock> Noise(std::size_t channels, std::int32_t samples, double rate);
    void OpenBlocks(std::vector<std::shared_ptr<FakeBlock>> blocks);
};

}  // namespace quillon::testing
