#pragma once

#include <cstdint>
#include <vector>

#include "data/Document.h"
#include "view/Lane.h"
#include "view/LaneLayout.h"
#include "view/LaneSettings.h"
#include "view/SceneBlocks.h"
#include "view/TimeAxis.h"

namespace quillon {

/// A lane for every shown signal of a document: which are visible, where, at which scales. Channels are numbers of
/// signals. The steps of scales have no end that a recording reaches, see ScaleSteps.h.
class ChannelLanes {
  public:
    /// The document must outlive this object.
    explicit ChannelLanes(const Document& document) : m_document(document) {}

    /// Rows of the graph.
    void SetHeight(std::int32_t height) { m_height = height; }
    void SetDpi(int dpi) { m_dpi = dpi; }
    [[nodiscard]] int Dpi() const { return m_dpi; }
    /// Codes have scales of their own.
    void SetRawCodes(bool rawCodes);

    [[nodiscard]] const LaneSettings& Settings() const { return m_settings; }
    /// A block whose channels these settings do not know is fitted when its lanes are needed next.
    void Restore(const LaneSettings& settings);
    void SetOn(bool on) { m_settings.on = on; }
    void SetClip(bool clip) { m_settings.clip = clip; }
    void SetNegativeUp(bool negativeUp) { m_settings.negativeUp = negativeUp; }
    /// Another block is going to be loaded.
    void LeaveBlock() { m_fitted = false; }
    /// There are other signals of the same stretch, or they have other numbers: those that are not known are fitted.
    void SignalsChanged() { m_fitted = KnowsAll(); }
    /// The signals of the block or of its stretch are shown from now on: they are fitted like a new block. The first
    /// visible lane of a channel that is there before and after stays the first one.
    void SignalsChosen(const Lanes& before);
    /// Whether the graph shows lanes: they are on, and there are several signals.
    [[nodiscard]] bool IsUsed() const { return m_settings.on && m_document.SignalCount() > 1; }
    /// Fits a block that is shown in lanes for the first time, see FitTypical; reads its typical stretches.
    void FitOnce();

    /// The visible lanes, each of one channel; one without a channel where none is shown.
    [[nodiscard]] Lanes Make() const;
    [[nodiscard]] LaneLayout Layout() const { return LayoutOf(Channels()); }
    /// The channels of all lanes from top to bottom, and of the visible ones.
    [[nodiscard]] std::vector<std::int16_t> Order() const { return OrderOf(Channels()); }
    [[nodiscard]] std::vector<std::int16_t> Visible() const { return VisibleOf(Channels()); }
    /// All signals, by their numbers.
    [[nodiscard]] std::vector<LaneChannel> Channels() const;
    [[nodiscard]] const LaneScales& Scales() const { return m_rawCodes ? m_settings.codes : m_settings.values; }

    /// Steps of the scales of all groups of the block, of that of a channel, and of a channel alone; finer ones
    /// positive.
    void ZoomAll(int steps);
    void ZoomGroup(std::int16_t channel, int steps);
    void ZoomChannel(std::int16_t channel, int steps);
    /// The scale of a channel's group: values of the channel, or codes, per lane height.
    void SelectScale(std::int16_t channel, double valuesPerLane);
    /// Whether its group has the scale that SelectScale would choose.
    [[nodiscard]] bool HasScale(std::int16_t channel, double valuesPerLane) const;
    /// Moves the trace of a channel, or of all shown ones, down by rows.
    void Move(std::int16_t channel, std::int64_t rows);
    void MoveAll(std::int64_t rows);
    /// Zero into the middle of all lanes.
    void CentreZero();
    /// Fits the groups, or one channel alone, to what the graph shows, see LaneFits.h. The visible lanes are read
    /// through the cache; those out of sight are fitted too where little has to be read for that.
    void FitShown(const TimeAxis& axis, const SceneBlocks& blocks);
    void FitAlone(std::int16_t channel, const TimeAxis& axis, const SceneBlocks& blocks);
    /// Makes another lane the first visible one; returns whether there was room.
    bool Scroll(std::int32_t lanes);
    /// Moves the lane of a channel to the place of another; returns whether that is another place.
    bool Reorder(std::int16_t channel, std::int16_t to);

  private:
    [[nodiscard]] LaneScales& ChangedScales() { return m_rawCodes ? m_settings.codes : m_settings.values; }
    [[nodiscard]] bool KnowsAll() const;
    [[nodiscard]] LaneLayout LayoutOf(const std::vector<LaneChannel>& channels) const;
    [[nodiscard]] std::vector<std::int16_t> OrderOf(const std::vector<LaneChannel>& channels) const;
    [[nodiscard]] std::vector<std::int16_t> VisibleOf(const std::vector<LaneChannel>& channels) const;
    /// Rows by which zero lies below the middle of a lane; upside down, above it.
    [[nodiscard]] std::int64_t Shift(const LaneChannel& channel, double laneHeight) const;
    void MoveDown(const LaneChannel& channel, double laneHeight, std::int64_t rows);

    const Document& m_document;
    LaneSettings m_settings;
    std::int32_t m_height = 0;
    int m_dpi = 96;
    bool m_rawCodes = false;
    bool m_fitted = false;
};

/// Whether one axis for the shown signals is hard to read: there are four or more, or units of several groups.
[[nodiscard]] bool LanesWouldHelp(const Document& document);

}  // namespace quillon
