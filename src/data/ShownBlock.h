#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "data/ShownChannels.h"
#include "data/ShownStream.h"

namespace quillon {

/// A block made of a stored one: its channels filtered, with a reference, or pairs of them. It answers as any block
/// does, in codes of the stored channels' scales, limited to 16 bits. A code depends on the stored ones and the
/// settings only, not on what was asked for before.
///
/// What was made lately is kept in pages, some MB of them.
class ShownBlock : public RecordingBlock {
  public:
    /// `stored` is prepared as far as it is wanted; where its scales change later, this block is to be made anew.
    ShownBlock(std::shared_ptr<RecordingBlock> stored, ShownChannelSet shown);
    ~ShownBlock() override;

    void Prepare() override { m_stored->Prepare(); }
    void PrepareQuickly() override { m_stored->PrepareQuickly(); }
    bool PrepareMore() override { return m_stored->PrepareMore(); }
    [[nodiscard]] bool IsProvisional() const override { return m_stored->IsProvisional(); }
    [[nodiscard]] double PreparedShare() const override { return m_stored->PreparedShare(); }
    [[nodiscard]] std::u16string Title() const override { return m_stored->Title(); }
    [[nodiscard]] double StartTime() const override { return m_stored->StartTime(); }
    [[nodiscard]] double SampleRate() const override { return m_stored->SampleRate(); }
    [[nodiscard]] std::int32_t SampleCount() const override { return m_stored->SampleCount(); }
    [[nodiscard]] std::int16_t ChannelCount() const override;
    /// Of pairs: counted from 0.
    [[nodiscard]] std::int16_t ChannelNumber(std::int16_t channel) const override;
    [[nodiscard]] std::u16string ChannelTitle(std::int16_t channel) const override { return Of(channel).title; }
    [[nodiscard]] std::u16string ChannelUnit(std::int16_t channel) const override;
    [[nodiscard]] float ChannelScale(std::int16_t channel) const override;
    [[nodiscard]] float ChannelOffset(std::int16_t channel) const override { return Of(channel).offset; }
    std::int32_t ReadCodes(std::int16_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    std::int32_t ReadValues(std::int16_t channel, std::int32_t first, std::int32_t count, float* buffer) override;
    [[nodiscard]] std::int32_t MarkCount() const override { return m_stored->MarkCount(); }
    [[nodiscard]] std::int32_t MarkPosition(std::int32_t mark) const override { return m_stored->MarkPosition(mark); }
    [[nodiscard]] std::u16string MarkText(std::int32_t mark) const override { return m_stored->MarkText(mark); }
    [[nodiscard]] double MarkDuration(std::int32_t mark) const override { return m_stored->MarkDuration(mark); }
    [[nodiscard]] std::u16string DeviceName() const override { return m_stored->DeviceName(); }
    [[nodiscard]] std::u16string BlockName() const override { return m_stored->BlockName(); }
    [[nodiscard]] std::int16_t InputNumber(std::int16_t channel) const override;
    std::int32_t ReadFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    [[nodiscard]] bool FramesAreCheap() const override { return false; }
    bool Approach(std::int32_t first) override;
    [[nodiscard]] std::int32_t PlacesPerPiece() const override;
    /// More than the stored block's where filters remember long: a piece anywhere costs the way to it.
    [[nodiscard]] std::int32_t SamplesPerPiece() const override;
    bool ColumnExtremes(std::span<const std::int16_t> channels, std::int32_t first, std::int32_t count,
                        std::int32_t run, std::span<RunExtremes* const> out) override;

  private:
    struct Page;
    struct Group;
    [[nodiscard]] const ShownChannel& Of(std::int16_t channel) const;
    void MakeGroups();
    Page& PageAt(std::size_t group, std::int32_t number);
    void MakePage(Group& group, Page& page);
    /// Comes nearer to a page; true when it can be made at once, or there is no such page.
    bool ApproachPage(std::size_t group, std::int32_t page);
    ShownStream& StreamAt(Group& group, std::int32_t first);
    /// Calls use(page, from, count, done) for every page that holds samples of `span`: `count` of the page from sample
    /// `from` of it on, and `done` of the span lie before them.
    template <typename Use>
    void ForPages(std::size_t group, const SampleSpan& span, const Use& use);
    void ReduceGroup(std::size_t group, std::span<const std::int16_t> channels, const SampleSpan& span,
                     std::int32_t run, std::span<RunExtremes* const> out);

    std::shared_ptr<RecordingBlock> m_stored;
    ShownChannelSet m_shown;
    std::vector<std::unique_ptr<Group>> m_groups;
    std::vector<std::size_t> m_groupOf;  ///< per channel, from 0; ShownChannel::kNone where it is the stored one
    std::vector<std::size_t> m_rowOf;    ///< per channel: its row in the group's pages
    std::list<Page> m_pages;             ///< the one used last is the first
    std::map<std::pair<std::size_t, std::int32_t>, std::list<Page>::iterator> m_pageOf;  ///< by group and number
    std::size_t m_pageBytes = 0;
};

/// The block with filters and reference; `stored` itself where nothing changes. `shown` tells of each channel whether
/// it is shown.
[[nodiscard]] std::shared_ptr<RecordingBlock> MakeShownBlock(std::shared_ptr<RecordingBlock> stored,
                                                             const ShownSettings& settings,
                                                             const std::vector<bool>& shown);
/// The pairs of the montage as a block; null where there are none.
[[nodiscard]] std::shared_ptr<RecordingBlock> MakeMontageBlock(std::shared_ptr<RecordingBlock> stored,
                                                               const ShownSettings& settings);

}  // namespace quillon
