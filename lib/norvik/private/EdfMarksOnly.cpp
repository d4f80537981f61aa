#include "norvik/private/EdfMarksOnly.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/EdfMarks.h"
#include "norvik/private/EdfScan.h"
#include "norvik/private/EdfTimeline.h"
#include "norvik/private/FrameCount.h"

namespace quillon {

namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{64} << 20;

/// The finest rate at which all of the time has samples in one block.
double RateOf(double seconds) {
    for (const double rate : {1000.0, 1.0})
        if (seconds * rate < kBlockSamples - 1.0) return rate;
    return 1.0 / 60.0;
}

class MarksBlock final : public FileBlock {
  public:
    MarksBlock(BlockDescription description, double onset, std::shared_ptr<EdfMarks> marks)
        : FileBlock(std::move(description)), m_onset(onset), m_marks(std::move(marks)) {}

    [[nodiscard]] bool HasMarksOnly() const override { return true; }
    [[nodiscard]] std::int32_t MarkCount() const override { return static_cast<std::int32_t>(All().size()); }
    [[nodiscard]] std::int32_t MarkPosition(std::int32_t mark) const override { return Mark(mark).position; }
    [[nodiscard]] std::u16string MarkText(std::int32_t mark) const override { return m_marks->Text(Mark(mark)); }
    [[nodiscard]] double MarkDuration(std::int32_t mark) const override { return m_marks->Duration(Mark(mark)); }
    [[nodiscard]] bool FramesAreCheap() const override { return true; }
    [[nodiscard]] std::int32_t SamplesPerPiece() const override { return 1 << 20; }

  private:
    void FetchCodes(std::size_t /*channel*/, std::int32_t /*first*/, std::int32_t count,
                    std::int16_t* buffer) override {
        std::fill_n(buffer, count, std::int16_t{0});
    }
    void FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        FetchCodes(0, first, count, buffer);
    }
    void FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        FetchCodes(0, first, count, buffer);
    }
    bool FetchExtremes(std::span<const std::size_t> /*channels*/, std::int32_t /*first*/, std::int32_t count,
                       std::int32_t run, std::span<RunExtremes* const> out) override {
        const std::int32_t runs = count / run + (count % run > 0 ? 1 : 0);
        for (RunExtremes* const channel : out) std::fill_n(channel, runs, RunExtremes{});
        return true;
    }

    [[nodiscard]] const std::vector<EdfMarks::Mark>& All() const {
        return m_marks->Of(m_onset, SampleRate(), SampleCount());
    }
    [[nodiscard]] const EdfMarks::Mark& Mark(std::int32_t mark) const {
        if (mark < 1 || mark > MarkCount()) throw std::out_of_range("a mark outside the block");
        return All()[static_cast<std::size_t>(mark) - 1];
    }

    double m_onset;
    std::shared_ptr<EdfMarks> m_marks;
};

Bilingual Describe(const EdfHeader& header, std::size_t marks, const EdfScan& scan, bool cut) {
    Bilingual info = Say(u"%1, annotations only: %2", u"%1, только аннотации: %2",
                         {header.format, Decimal(static_cast<std::int64_t>(marks))});
    for (const Bilingual& note : header.notes) AppendRemark(info, note);
    if (scan.Malformed() > 0)
        AppendRemark(info, Say(u"%1 damaged annotations left out", u"пропущено повреждённых аннотаций: %1",
                               {Decimal(static_cast<std::int64_t>(scan.Malformed()))}));
    if (cut) AppendRemark(info, Say(u"too many, the rest left out", u"слишком много, остальные пропущены"));
    return info;
}

}  // namespace

RecordingContent ReadEdfMarks(const std::shared_ptr<ByteSource>& source, EdfHeader header, const ReadBudget& budget) {
    // The gaps between stretches are between samples; onsets of annotations count from the start of the file.
    header.discontinuous = false;
    EdfTimeline timeline(header, 1);
    const auto marks = std::make_shared<EdfMarks>();
    EdfScan scan(source, header, timeline, *marks, budget.step);
    bool more = true;
    while (more && scan.BytesRead() < kMostBytes) more = scan.Step(0);
    const std::optional<std::pair<double, double>> extent = marks->Extent();
    if (!extent) {
        throw FormatError(
            Say(u"the file holds neither samples nor annotations", u"в файле нет ни отсчётов, ни аннотаций"));
    }

    BlockDescription block;
    block.deviceName = header.deviceName;
    block.blockName = header.blockName;
    block.startTime = header.startDate > 0.0 ? header.startDate + extent->first / kSecondsPerDay : 0.0;
    const double seconds = extent->second - extent->first;
    block.sampleRate = RateOf(seconds);
    block.sampleCount = static_cast<std::int32_t>(std::floor(seconds * block.sampleRate)) + 1;
    ChannelDescription channel;
    channel.inputNumber = 1;
    channel.title = header.annotations.front().label;
    block.channels = std::make_shared<const std::vector<ChannelDescription>>(1, channel);

    RecordingContent content;
    content.format = header.format;
    content.info = Describe(header, marks->Count(), scan, more || marks->LimitReached());
    content.blocks = {std::make_shared<MarksBlock>(std::move(block), extent->first, marks)};
    return content;
}

}  // namespace quillon
