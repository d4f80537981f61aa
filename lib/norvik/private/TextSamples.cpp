#include "norvik/private/TextSamples.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <string>

#include "base/LittleEndian.h"
#include "base/Text.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/PieceBuffer.h"

namespace quillon {

namespace {

/// Every two characters may be a number, which takes four bytes.
constexpr std::uint64_t kLongestText = std::uint64_t{128} << 20;
constexpr std::size_t kLongestNumber = 64;
/// Up to here singles hold every whole number.
constexpr float kLargestWhole = 16777216.0F;

/// Collects the numbers of a text that comes in pieces.
class NumberLines {
  public:
    NumberLines(const BrainVisionColumns& columns, std::size_t channels, bool vectorized)
        : m_columns(columns), m_channels(channels), m_vectorized(vectorized) {}

    /// Returns whether more is wanted.
    bool Feed(std::string_view text) {
        for (const char letter : text) {
            if (letter == '\n') {
                EndLine();
            } else if (m_line > m_columns.skippedLines) {
                IsSeparator(letter) ? EndNumber() : AddLetter(letter);
            }
            if (m_stopped) return false;
        }
        return true;
    }
    void End() {
        if (!m_stopped) EndLine();
    }

    /// Numbers of the lines that are whole, row by row.
    [[nodiscard]] std::vector<std::uint8_t> Take();
    [[nodiscard]] bool AllWhole() const { return m_allWhole; }
    [[nodiscard]] const Bilingual& Fault() const { return m_fault; }
    [[nodiscard]] std::size_t Rows() const { return m_rowEnds.size(); }

  private:
    [[nodiscard]] bool IsSeparator(char letter) const {
        return letter == ' ' || letter == '\t' || letter == '\r' || letter == ';' ||
               (letter == ',' && m_columns.decimalPoint != ',');
    }
    void AddLetter(char letter) {
        if (m_number.size() < kLongestNumber) m_number += letter == m_columns.decimalPoint ? '.' : letter;
    }
    void EndNumber();
    void EndLine();
    void Stop(Bilingual fault) {
        m_fault = std::move(fault);
        m_stopped = true;
    }
    [[nodiscard]] std::u16string Line() const { return Decimal(static_cast<std::int64_t>(m_line)); }

    BrainVisionColumns m_columns;
    std::size_t m_channels;
    bool m_vectorized;
    std::uint64_t m_line = 1;
    std::uint64_t m_column = 0;
    std::string m_number;
    std::vector<std::uint8_t> m_bytes;   ///< singles
    std::vector<std::size_t> m_rowEnds;  ///< of whole lines, in bytes
    bool m_allWhole = true;
    bool m_stopped = false;
    Bilingual m_fault;
};

void NumberLines::EndNumber() {
    if (m_number.empty()) return;
    if (m_column++ >= m_columns.skippedColumns) {
        std::string_view digits = m_number;
        if (digits.size() > 1 && digits.front() == '+' && digits[1] != '-') digits.remove_prefix(1);
        double number = 0.0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        const bool cut = m_number.size() == kLongestNumber;
        if (cut || error != std::errc() || end != digits.data() + digits.size()) {
            return Stop(Say(u"line %1 of the samples: '%2' is no number", u"строка %1 отсчётов: «%2» — не число",
                            {Line(), FromUtf8OrLatin1(m_number)}));
        }
        const auto single = static_cast<float>(number);
        m_allWhole = m_allWhole && std::abs(single) <= kLargestWhole && static_cast<double>(single) == number &&
                     number == std::trunc(number);
        m_bytes.resize(m_bytes.size() + 4);
        PutLe32(m_bytes.data() + m_bytes.size() - 4, std::bit_cast<std::uint32_t>(single));
    }
    m_number.clear();
}

void NumberLines::EndLine() {
    if (m_line > m_columns.skippedLines) {
        EndNumber();
        if (m_stopped) return;
        const std::size_t values = (m_bytes.size() - (m_rowEnds.empty() ? 0 : m_rowEnds.back())) / 4;
        if (values > 0 && !m_vectorized && values != m_channels) {
            return Stop(Say(
                u"line %1 of the samples: %2 numbers of %3", u"строка %1 отсчётов: чисел %2 из %3",
                {Line(), Decimal(static_cast<std::int64_t>(values)), Decimal(static_cast<std::int64_t>(m_channels))}));
        }
        if (values > 0) m_rowEnds.push_back(m_bytes.size());
        if (m_vectorized && m_rowEnds.size() == m_channels) m_stopped = true;
    }
    m_column = 0;
    ++m_line;
}

std::vector<std::uint8_t> NumberLines::Take() {
    if (!m_vectorized) {
        m_bytes.resize(m_rowEnds.empty() ? 0 : m_rowEnds.back());
        return std::move(m_bytes);
    }
    std::size_t shortest = m_rowEnds.front();
    for (std::size_t row = 1; row < m_rowEnds.size(); ++row)
        shortest = std::min(shortest, m_rowEnds[row] - m_rowEnds[row - 1]);
    for (std::size_t row = 1; row < m_rowEnds.size(); ++row) {
        const auto from = m_bytes.begin() + static_cast<std::ptrdiff_t>(m_rowEnds[row - 1]);
        std::copy_n(from, shortest, m_bytes.begin() + static_cast<std::ptrdiff_t>(row * shortest));
    }
    m_bytes.resize(m_rowEnds.size() * shortest);
    return std::move(m_bytes);
}

}  // namespace

TextSamples ReadTextSamples(ByteSource& text, const BrainVisionColumns& columns, std::size_t channels,
                            bool vectorized) {
    if (text.Size() > kLongestText) {
        throw FormatError(Say(u"samples as text of more than 128 MiB are not supported",
                              u"отсчёты в виде текста больше 128 МиБ не поддерживаются"));
    }
    NumberLines lines(columns, channels, vectorized);
    PieceBuffer buffer;
    bool more = true;
    for (std::uint64_t at = 0; more && at < text.Size();) {
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(text.Size() - at, kPieceBytes));
        more = lines.Feed({reinterpret_cast<const char*>(buffer.Read(text, at, size)), size});
        at += size;
    }
    lines.End();
    if (lines.Rows() < (vectorized ? channels : 1)) {
        if (!lines.Fault().english.empty()) throw FormatError(lines.Fault());
        throw FormatError(Say(u"%1 lines of samples of %2", u"строк отсчётов %1 из %2",
                              {Decimal(static_cast<std::int64_t>(lines.Rows())),
                               Decimal(static_cast<std::int64_t>(vectorized ? channels : 1))}));
    }
    TextSamples samples;
    samples.remark = lines.Fault();
    std::vector<std::uint8_t> bytes = lines.Take();
    if (lines.AllWhole()) {
        samples.kind = SampleKind::Int32;
        for (std::size_t at = 0; at < bytes.size(); at += 4) {
            const auto whole = static_cast<std::int32_t>(LeFloat(bytes.data() + at));
            PutLe32(bytes.data() + at, static_cast<std::uint32_t>(whole));
        }
    }
    samples.source = std::make_shared<MemorySource>(std::move(bytes));
    return samples;
}

}  // namespace quillon
