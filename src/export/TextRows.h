#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "format/FixedText.h"
#include "format/QL_Format.h"

/// The text of exported samples: lines of columns separated by tabs, in UTF-8. Pure text; what is written where is
/// decided in export/QL_Export.h.
namespace quillon {

/// Rows that are read and written at a time.
inline constexpr std::int32_t kTextChunkRows = 100;
inline constexpr std::string_view kTextLineEnd = "\r\n";

/// Decimals of a quantity that comes in steps of `resolution`: one more than its first digit needs, at least one. A
/// step of 10 or more has as many decimals as zeros, as the family's other programs write it.
[[nodiscard]] int DecimalsOfResolution(float resolution);
[[nodiscard]] int DecimalsOfResolution(double resolution);

enum class TextXColumn { None, Time, SampleNumber };

/// The X column in the unit that the options fix, else in the one that suits the step.
class TextXValues {
  public:
    /// `startOfDay` is the time of day, in s, of the block's first sample; `first` is the first exported sample,
    /// from 1.
    TextXValues(TextXColumn kind, double sampleRate, double startOfDay, std::int32_t first,
                const FormatOptions& options);

    [[nodiscard]] TextXColumn kind() const { return m_kind; }
    /// Row 0 is the first exported sample. Times count from it, unless they are times of day; sample numbers count from
    /// the block's start, from 1. `out` has FixedText::kRoom bytes; returns the end.
    char* Write(char* out, std::int32_t row) const;

  private:
    TextXColumn m_kind;
    double m_step;
    double m_start = 0.0;
    std::int32_t m_first;
    bool m_clock = false;
    bool m_timeOfDay;
    char16_t m_separator;
    double m_factor = 1.0;
    FixedText m_number{6, '.'};
};

/// One channel's column.
struct TextChannel {
    std::int16_t position = 1;  ///< in the block, from 1
    std::string title;          ///< UTF-8
    float scale = 1.0F;
    float offset = 0.0F;
};

/// Where a column's codes are: those of consecutive rows lie `stride` apart.
struct TextCodes {
    const std::int16_t* codes = nullptr;
    std::size_t stride = 1;
};

/// The text of one channel's title for the title line: "Ch" and the number from 1 where it has none. Tabs and line ends
/// in it would make columns and lines of their own, so control characters become blanks.
[[nodiscard]] std::string TextTitle(std::u16string_view title, std::int16_t channelNumber);

/// The separator of the options as one byte; a point where it is not an ASCII character.
[[nodiscard]] char TextSeparator(const FormatOptions& options);

/// The title line with its end.
[[nodiscard]] std::string TextTitleLine(TextXColumn x, std::span<const TextChannel> channels,
                                        std::string_view lineEnd = kTextLineEnd);

/// Makes rows, chunk by chunk, in a buffer that it owns and reuses.
class TextRows {
  public:
    /// Values with the decimals of the channels' scales, or with `rawCodes` the codes as they are. The text of
    /// `lineEnd` is not copied.
    TextRows(const TextXValues& x, std::span<const TextChannel> channels, bool rawCodes, char separator,
             std::string_view lineEnd = kTextLineEnd);

    /// `count` rows from row `first` on, at most kTextChunkRows; `columns` has one entry per channel. Valid until the
    /// next call.
    [[nodiscard]] std::string_view Make(std::int32_t first, std::int32_t count, std::span<const TextCodes> columns);

  private:
    struct Column {
        float scale;
        float offset;
        FixedText text;
    };
    char* WriteValues(char* out, std::size_t row, std::span<const TextCodes> columns) const;
    char* WriteCodes(char* out, std::size_t row, std::span<const TextCodes> columns) const;

    TextXValues m_x;
    bool m_rawCodes;
    std::string_view m_lineEnd;
    std::vector<Column> m_columns;
    std::vector<char> m_buffer;
};

}  // namespace quillon
