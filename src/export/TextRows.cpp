#include "export/TextRows.h"

#include <algorithm>

#include "base/Text.h"

namespace quillon {

namespace {

int DecimalsOfExponent(int exponent) {
    return exponent <= 0 ? 1 - exponent : exponent;
}

/// The numbers of FormatOptions::timeUnit.
enum TimeUnit { kClock = 1, kMinutes, kSeconds, kMilliseconds, kMicroseconds };

int UnitOfStep(double step) {
    if (step >= 10.0) return kClock;
    return step < 1e-5 ? kMilliseconds : kSeconds;
}

char* Copy(std::string_view text, char* out) {
    return std::copy(text.begin(), text.end(), out);
}

}  // namespace

int DecimalsOfResolution(float resolution) {
    return DecimalsOfExponent(DecimalExponent(resolution));
}

int DecimalsOfResolution(double resolution) {
    return DecimalsOfExponent(DecimalExponent(resolution));
}

char TextSeparator(const FormatOptions& options) {
    return options.decimalSeparator < 0x80 ? static_cast<char>(options.decimalSeparator) : '.';
}

TextXValues::TextXValues(TextXColumn kind, double sampleRate, double startOfDay, std::int32_t first,
                         const FormatOptions& options)
    : m_kind(kind),
      m_step(1.0 / sampleRate),
      m_first(first),
      m_timeOfDay(options.timeOfDay),
      m_separator(static_cast<char16_t>(TextSeparator(options))) {
    if (m_timeOfDay) m_start = startOfDay + static_cast<double>(first - 1) * m_step;
    const char separator = TextSeparator(options);
    switch (options.timeUnit > 0 ? options.timeUnit : UnitOfStep(m_step)) {
        case kClock: m_clock = true; break;
        case kMinutes:
            m_factor = 1.0 / 60.0;
            m_number = FixedText(6, separator);
            break;
        case kSeconds: m_number = FixedText(DecimalsOfResolution(m_step), separator); break;
        case kMilliseconds:
            m_factor = 1e3;
            m_number = FixedText(4, separator);
            break;
        case kMicroseconds:
            m_factor = 1e6;
            m_number = FixedText(3, separator);
            break;
        default: m_number = FixedText(6, separator);  // seconds
    }
}

char* TextXValues::Write(char* out, std::int32_t row) const {
    if (m_kind == TextXColumn::SampleNumber) {
        return WriteWhole(out, static_cast<std::uint64_t>(std::int64_t{m_first} + row));
    }
    const double time = m_start + static_cast<double>(row) * m_step;
    if (m_clock) return Copy(Utf8(ClockText(time, m_timeOfDay, m_separator)), out);
    return m_number.WriteTime(out, time * m_factor);
}

std::string TextTitle(std::u16string_view title, std::int16_t channelNumber) {
    std::string text = Utf8(title);
    if (text.empty()) return "Ch" + std::to_string(channelNumber + 1);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    return text;
}

std::string TextTitleLine(TextXColumn x, std::span<const TextChannel> channels, std::string_view lineEnd) {
    std::string line = x == TextXColumn::Time ? "Time" : x == TextXColumn::SampleNumber ? "N" : "";
    for (const TextChannel& channel : channels) {
        if (!line.empty()) line += '\t';
        line += channel.title;
    }
    return line.append(lineEnd);
}

TextRows::TextRows(const TextXValues& x, std::span<const TextChannel> channels, bool rawCodes, char separator,
                   std::string_view lineEnd)
    : m_x(x), m_rawCodes(rawCodes), m_lineEnd(lineEnd) {
    for (const TextChannel& channel : channels) {
        m_columns.push_back({channel.scale, channel.offset, FixedText(DecimalsOfResolution(channel.scale), separator)});
    }
    // The size of a column includes its tab or line end; memory pages not written to are never touched.
    const std::size_t rowRoom = (m_columns.size() + 1) * (FixedText::kRoom + lineEnd.size());
    m_buffer.resize(rowRoom * static_cast<std::size_t>(kTextChunkRows));
}

std::string_view TextRows::Make(std::int32_t first, std::int32_t count, std::span<const TextCodes> columns) {
    char* out = m_buffer.data();
    for (std::int32_t row = 0; row < std::min(count, kTextChunkRows); ++row) {
        if (m_x.kind() != TextXColumn::None) {
            out = m_x.Write(out, first + row);
            *out++ = '\t';
        }
        const auto at = static_cast<std::size_t>(row);
        out = m_rawCodes ? WriteCodes(out, at, columns) : WriteValues(out, at, columns);
        // Every column ends with a tab; the last one is overwritten by the line end.
        out = Copy(m_lineEnd, out - 1);
    }
    return {m_buffer.data(), static_cast<std::size_t>(out - m_buffer.data())};
}

char* TextRows::WriteValues(char* out, std::size_t row, std::span<const TextCodes> columns) const {
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const Column& column = m_columns[i];
        const auto code = static_cast<float>(columns[i].codes[row * columns[i].stride]);
        out = column.text.Write(out, code * column.scale + column.offset);
        *out++ = '\t';
    }
    return out;
}

char* TextRows::WriteCodes(char* out, std::size_t row, std::span<const TextCodes> columns) const {
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const int code = columns[i].codes[row * columns[i].stride];
        if (code < 0) *out++ = '-';
        out = WriteWhole(out, static_cast<std::uint64_t>(code < 0 ? -code : code));
        *out++ = '\t';
    }
    return out;
}

}  // namespace quillon
