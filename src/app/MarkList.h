#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data/QL_Types.h"
#include "format/QL_Format.h"

namespace quillon {

/// The channel that a mark names, as EDF+ files write it behind "@@" in its text; empty where it names none.
struct MarkWords {
    std::u16string text;
    std::u16string channel;
};
[[nodiscard]] MarkWords WordsOf(const std::u16string& markText);

/// The list of a block's marks as the user sees it: in order of time, those that contain what was typed in their text
/// or their channel, in letters of any case.
class MarkList {
  public:
    enum Column { Time, Duration, Channel, Text, ColumnCount };

    /// Both must outlive this object.
    MarkList(const ViewBlock& block, const FormatOptions& format) : m_block(block), m_format(format) {}

    /// The marks of the block have changed.
    void Update();
    /// False where that changes nothing.
    bool SetFilter(const std::u16string& typed);
    [[nodiscard]] bool IsFiltered() const { return !m_filter.empty(); }
    /// Lines, of all marks those that the filter leaves; none where the marks are others than at the last Update.
    [[nodiscard]] std::size_t Count() const { return m_block.marks.size() == m_marks ? m_lines.size() : 0; }
    /// The mark of a line, from 0.
    [[nodiscard]] const BlockMark& Mark(std::size_t line) const { return m_block.marks[m_lines[line]]; }
    [[nodiscard]] std::u16string Cell(std::size_t line, Column column) const;
    /// The line whose time is that of the sample, or the last one before it; none where all lie behind it.
    [[nodiscard]] std::optional<std::size_t> LineAt(std::int32_t sample) const;
    /// How often each text occurs in the list, the most frequent first; no captions.
    [[nodiscard]] std::vector<std::vector<std::u16string>> Counts() const;
    /// All cells of a line.
    [[nodiscard]] std::vector<std::u16string> Row(std::size_t line) const;
    /// All lines as comma-separated values (RFC 4180) in UTF-8: onset and duration in seconds with a point, onsets from
    /// the start of the block; then channel and text.
    [[nodiscard]] std::string Csv() const;

  private:
    [[nodiscard]] bool Contains(const BlockMark& mark) const;

    const ViewBlock& m_block;
    const FormatOptions& m_format;
    std::u16string m_filter;             ///< in lower case
    std::vector<std::uint32_t> m_lines;  ///< indices of marks
    std::size_t m_marks = 0;             ///< of the block
};

}  // namespace quillon
