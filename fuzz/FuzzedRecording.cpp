#include "fuzz/FuzzedRecording.h"

#include <algorithm>
#include <array>

#include "base/Text.h"

namespace quillon::fuzz {

namespace {

constexpr std::size_t kChoiceBytes = 4;
constexpr std::size_t kMostBlocks = 24;
constexpr std::size_t kRepeatedBytes = 4096;
constexpr std::size_t kMostRepeats = 100;

/// Bytes in memory that lose their end after a number of reads.
class ShrinkingSource final : public ByteSource {
  public:
    ShrinkingSource(std::vector<std::uint8_t> bytes, std::size_t reads, std::size_t lost)
        : m_size(bytes.size()),
          m_whole(bytes),
          m_rest({bytes.begin(), bytes.end() - std::ptrdiff_t(lost)}),
          m_reads(reads) {}

    [[nodiscard]] std::uint64_t Size() const override { return m_size; }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        if (m_reads > 0) return --m_reads, m_whole.ReadAt(offset, buffer, count);
        return m_rest.ReadAt(offset, buffer, count);
    }

  private:
    std::uint64_t m_size;
    MemorySource m_whole;
    MemorySource m_rest;
    std::size_t m_reads;
};

/// The answers about some blocks that pieces of reading may change.
std::u16string Found(const RecordingContent& content) {
    std::u16string found = content.info.english + Decimal(static_cast<std::int64_t>(content.blocks.size()));
    for (const std::size_t at : BlocksToCheck(content)) {
        const FileBlock& block = *content.blocks[at];
        found += u'\n' + block.Title() + u' ' + Decimal(block.SampleCount()) + u' ' + Decimal(block.MarkCount());
        found += u' ' + ShortestDecimal(block.SampleRate()) + u' ' + ShortestDecimal(block.StartTime());
        for (std::int32_t mark = 1; mark <= std::min(block.MarkCount(), 100); ++mark)
            found += u' ' + Decimal(block.MarkPosition(mark)) + block.MarkText(mark);
    }
    return found;
}

/// Reading in small pieces, in an order that `choice` decides, ends with what one pass finds.
void CheckPieces(RecordingFile file, const RecordingContent& plain, std::uint32_t choice) {
    file.budget = {.opening = choice % 5000, .step = 64};
    RecordingContent content = ReadRecording(file);
    std::size_t blocks = content.blocks.size();
    for (bool more = content.readMore != nullptr; more;) {
        choice = choice * 1664525U + 1013904223U;
        const auto near = static_cast<std::int32_t>((choice >> 1) % 100000);
        const double share = content.share;
        more = content.readMore(content, static_cast<std::int16_t>(choice >> 20), near);
        Require(content.blocks.size() >= blocks, "blocks stay");
        Require(content.share >= share && content.share <= 1.0, "the share that is read grows");
        blocks = content.blocks.size();
        static_cast<void>(content.blocks[choice % blocks]->MarkCount());
    }
    Require(content.share == 1.0, "all is read");
    Require(Found(content) == Found(plain), "reading in pieces finds what one pass finds");
}

}  // namespace

std::optional<FuzzedRecording> OpenFuzzed(std::span<const std::uint8_t> bytes) {
    constexpr std::array<std::u16string_view, 16> names{u"a.edf", u"a.bdf",  u"a.wav",  u"a.rf64", u"a.bin", u"a.vhdr",
                                                        u"a.eeg", u"a.flac", u"a",      u"a.hea",  u"a.dat", u"a.csv",
                                                        u"a.gdf", u"a.w64",  u"a.aiff", u"a.au"};
    std::array<std::uint8_t, kChoiceBytes> choice{};
    if (bytes.size() >= kChoiceBytes) std::copy(bytes.end() - kChoiceBytes, bytes.end(), choice.begin());
    std::vector<std::uint8_t> file(bytes.begin(), bytes.end());
    // Only for odd numbers, so that seeds that end with zeros are read unchanged.
    const bool isLong = choice[1] % 2 == 1;
    const auto tail = bytes.last(std::min(bytes.size(), kRepeatedBytes));
    for (std::size_t repeat = 0; isLong && repeat < choice[1] % kMostRepeats; ++repeat)
        file.insert(file.end(), tail.begin(), tail.end());
    std::shared_ptr<ByteSource> source;
    const bool shrinks = choice[2] % 2 == 1;
    if (shrinks) {
        const std::size_t lost = file.size() * (choice[3] + std::size_t{1}) / 256;
        source = std::make_shared<ShrinkingSource>(std::move(file), choice[2] / std::size_t{2}, lost);
    } else {
        source = std::make_shared<MemorySource>(std::move(file));
    }
    const auto openCompanion = [bytes, exists = choice[0] < 128](const std::u16string&,
                                                                 Bilingual& error) -> std::shared_ptr<ByteSource> {
        const auto half = bytes.subspan(bytes.size() / 2);
        if (exists) return std::make_shared<MemorySource>(std::vector<std::uint8_t>(half.begin(), half.end()));
        error = Say(u"there is no such file", u"такого файла нет");
        return nullptr;
    };
    try {
        const RecordingFile opened{source, std::u16string(names[choice[0] % names.size()]), Companions(openCompanion)};
        FuzzedRecording recording{ReadRecording(opened), isLong, shrinks};
        RecordingContent& content = recording.content;
        while (content.readMore && content.readMore(content, 1, 0)) {
        }
        Require(!content.blocks.empty(), "a recording has a block");
        const bool described = content.info.english.starts_with(content.format) && !content.info.russian.empty();
        Require(!content.format.empty() && described, "a recording is described");
        if (!shrinks) CheckPieces(opened, content, bytes.empty() ? 0U : bytes[bytes.size() / 2] * 65537U);
        return recording;
    } catch (const FormatError& error) {
        Require(!error.Reason().english.empty() && !error.Reason().russian.empty(), "a refusal has a reason");
        return std::nullopt;
    }
}

std::vector<std::size_t> BlocksToCheck(const RecordingContent& content) {
    std::vector<std::size_t> positions;
    const std::size_t step = std::max<std::size_t>(content.blocks.size() / kMostBlocks, 1);
    for (std::size_t at = 0; at < content.blocks.size(); at += step) positions.push_back(at);
    return positions;
}

}  // namespace quillon::fuzz
