#include "norvik/private/TableReader.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "base/Text.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/TableFacts.h"
#include "norvik/private/TableHead.h"
#include "norvik/private/TableRows.h"
#include "norvik/private/TableScale.h"
#include "norvik/private/TableText.h"

namespace quillon {

namespace {

constexpr std::size_t kHeadBytes = std::size_t{64} << 10;
/// Where text must be without a character 0.
constexpr std::size_t kTextBytes = 4096;

TableHead ReadHead(const std::shared_ptr<ByteSource>& source) {
    TableText text(source, kPieceBytes);
    std::string read(text.NextLines());
    const std::size_t null = text.FindNull();
    if (null < kTextBytes) {
        throw FormatError(Say(u"not text: character %1 is 0", u"не текст: символ %1 равен 0",
                              {Decimal(static_cast<std::int64_t>(null) + 1)}));
    }
    std::size_t end = read.size();
    if (end > kHeadBytes) end = read.rfind('\n', kHeadBytes) + 1;
    // One line that is longer.
    if (end == 0) end = read.find('\n') + 1;
    TableLines lines;
    for (std::size_t at = 0; at < end;) {
        const std::size_t lineEnd = read.find('\n', at);
        std::size_t size = lineEnd - at;
        if (size > 0 && read[lineEnd - 1] == '\r') --size;
        lines.push_back(std::string_view(read).substr(at, size));
        at = lineEnd + 1;
    }
    return ReadTableHead(lines, FindTableLayout(lines));
}

/// What reads a file, and what its blocks share.
class TableFile {
  public:
    explicit TableFile(const RecordingFile& file)
        : m_source(file.source),
          m_head(ReadHead(file.source)),
          m_text(file.source, std::min<std::size_t>(file.budget.step, kPieceBytes)),
          m_stepBytes(file.budget.step),
          m_rows(m_head) {
        m_rows.Cells()->SetErrorLanguage(file.source->ErrorLanguage());
    }

    /// Reads on; returns whether more is left.
    bool Step(std::uint64_t bytes);
    [[nodiscard]] std::uint64_t Rows() const { return m_rows.Rows(); }
    [[nodiscard]] std::uint64_t BytesRead() const { return m_text.BytesRead(); }
    void Update(RecordingContent& content, bool more);

    [[nodiscard]] std::uint64_t StepBytes() const { return m_stepBytes; }

  private:
    [[nodiscard]] bool ReadRows(std::uint64_t bytes);
    void MakeBlocks(RecordingContent& content);

    std::shared_ptr<ByteSource> m_source;
    TableHead m_head;
    TableText m_text;
    std::uint64_t m_stepBytes;
    TableRows m_rows;
    bool m_ended = false;
    Bilingual m_failure;
    std::optional<TableStepSearch> m_search;
    std::vector<std::optional<TableSteps>> m_steps;
    std::uint64_t m_shownRows = 0;  ///< of the blocks that were made last
};

bool TableFile::ReadRows(std::uint64_t bytes) {
    const std::uint64_t start = m_text.BytesRead();
    try {
        do {
            const std::string_view lines = m_text.NextLines();
            if (lines.empty() || !m_rows.Feed(lines, m_text.EndedWithoutLineEnd())) return false;
        } while (m_text.BytesRead() - start < bytes);
        return true;
    } catch (const FormatError& error) {
        if (m_rows.Rows() == 0) throw;
        m_failure = error.Reason();
        return false;
    }
}

bool TableFile::Step(std::uint64_t bytes) {
    if (!m_ended) {
        m_ended = !ReadRows(bytes);
        return true;
    }
    try {
        if (!m_search) m_search.emplace(m_rows.Columns(), m_rows.Cells(), m_rows.Rows());
        if (m_search->More()) return true;
        m_steps = m_search->Steps();
    } catch (const FormatError& error) {
        // Of the temporary file: the values are then as near as 16 bits allow.
        m_failure = error.Reason();
    }
    return false;
}

void TableFile::MakeBlocks(RecordingContent& content) {
    const TableFacts facts = FindTableFacts(m_head, m_rows, *m_source);
    FrameRecording recording;
    recording.layout = {SampleKind::Float32, 0, m_rows.Columns().size() * sizeof(float), 0};
    recording.frameCount = m_rows.Rows();
    recording.startTime = facts.startTime;
    recording.sampleRate = facts.rate;
    recording.channels = facts.channels;
    recording.stretches = facts.stretches;
    std::vector<WideCoding> codings;
    for (std::size_t at = 0; at < m_rows.Columns().size(); ++at)
        codings.push_back({1.0, ScaleOfColumn(m_rows.Columns()[at], m_steps.empty() ? std::nullopt : m_steps[at])});
    content.info = DescribeFrames({u"Text", u"Текст"}, recording);
    for (const Bilingual& remark : facts.remarks) AppendRemark(content.info, remark);
    if (!m_failure.english.empty()) {
        AppendRemark(content.info, Say(u"read up to row %1: ", u"прочитано строк: %1; ",
                                       {Decimal(static_cast<std::int64_t>(m_rows.Rows()))}));
        content.info.english += m_failure.english;
        content.info.russian += m_failure.russian;
    }
    content.blocks = quillon::MakeBlocks(
        recording, [&](BlockDescription description, std::uint64_t firstRow, std::size_t firstChannel) {
            FrameLayout layout = recording.layout;
            layout.dataOffset = firstRow * layout.frameBytes;
            layout.firstChannel = firstChannel;
            const auto first = codings.begin() + static_cast<std::ptrdiff_t>(firstChannel);
            std::vector<WideCoding> own(first, first + static_cast<std::ptrdiff_t>(description.channels->size()));
            return std::make_shared<FrameBlock>(m_rows.Cells(), layout, std::move(description), std::move(own));
        });
}

void TableFile::Update(RecordingContent& content, bool more) {
    constexpr double parsing = 0.9;
    const double share = m_search ? parsing + (1.0 - parsing) * m_search->Share() : parsing * m_text.Share();
    content.share = more ? std::min(share, 0.999) : 1.0;
    // All blocks are made anew, as rate and scales follow from all rows: only where there are a good deal more.
    if (more && 4 * m_rows.Rows() < 5 * m_shownRows) return;
    m_shownRows = m_rows.Rows();
    MakeBlocks(content);
    ++content.version;
}

}  // namespace

bool LooksLikeTable(std::span<const std::uint8_t>) {
    return false;
}

RecordingContent ReadTable(const RecordingFile& file) {
    const auto table = std::make_shared<TableFile>(file);
    bool more = true;
    while (more && (table->BytesRead() < file.budget.opening || table->Rows() == 0))
        more = table->Step(table->StepBytes());
    if (table->Rows() == 0) throw FormatError(Say(u"the table has no rows", u"в таблице нет строк"));
    RecordingContent content;
    content.format = u"Text";
    table->Update(content, more);
    if (!more) return content;
    content.readMore = [table](RecordingContent& to, std::int16_t, std::int32_t) {
        const bool left = table->Step(table->StepBytes());
        table->Update(to, left);
        return left;
    };
    return content;
}

}  // namespace quillon
