#include "norvik/private/TableScale.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "base/LittleEndian.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

namespace {

/// A value that is rounded, and single before, lies so far from the true one, in units of the last decimal.
constexpr double kMostOff = 0.8;
/// The text export writes one decimal more than the first digit of a step needs, so that steps are of 10 to 100 units.
constexpr double kSmallestStep = 8.0;
constexpr double kMostCodes = 65536.0;
/// Singles hold so many units exactly, with room for a half.
constexpr double kMostUnits = 8388608.0;
constexpr int kMostDecimals = 15;
/// Bits that all searched columns take.
constexpr std::size_t kMostBits = std::size_t{512} << 20;
constexpr std::uint64_t kFirstRows = 16384;

double PowerOf(const TableColumn& column) {
    return std::pow(10.0, column.decimals);
}

double UnitsOf(const TableColumn& column) {
    return std::nearbyint((column.maximum - column.minimum) * PowerOf(column));
}

bool HasUnits(const TableColumn& column) {
    const double largest = std::max(std::fabs(column.minimum), std::fabs(column.maximum));
    return column.exact && column.decimals <= kMostDecimals && column.minimum <= column.maximum &&
           largest * PowerOf(column) < 9007199254740992.0;
}

enum class Narrowed { Done, Open, Impossible };

/// Narrows the step down to what all differences of values allow, as far as the number of steps in them is certain.
Narrowed Narrow(const std::vector<std::uint32_t>& differences, double& low, double& high) {
    constexpr int mostRounds = 40;
    constexpr double off = 2.0 * kMostOff;
    for (int round = 0; round < mostRounds; ++round) {
        bool open = false;
        bool changed = false;
        for (const std::uint32_t difference : differences) {
            const double least = std::ceil((difference - off) / high);
            const double most = std::floor((difference + off) / low);
            if (least > most) return Narrowed::Impossible;
            open = open || least < most;
            if (least < most || least < 1.0) continue;
            const double from = std::max(low, (difference - off) / least);
            const double to = std::min(high, (difference + off) / least);
            if (from > to) return Narrowed::Impossible;
            changed = changed || from > low || to < high;
            low = from;
            high = to;
        }
        if (!open) return Narrowed::Done;
        if (!changed) break;
    }
    return Narrowed::Open;
}

/// The line through the values over their numbers of steps.
std::optional<TableSteps> Fit(const std::vector<std::uint32_t>& sorted, double step) {
    const auto count = static_cast<double>(sorted.size());
    double sumX = 0.0, sumY = 0.0, sumXX = 0.0, sumXY = 0.0;
    for (const std::uint32_t value : sorted) {
        const double y = value - sorted.front();
        const double x = std::nearbyint(y / step);
        sumX += x;
        sumY += y;
        sumXX += x * x;
        sumXY += x * y;
    }
    const double spread = count * sumXX - sumX * sumX;
    if (!(spread > 0.0)) return std::nullopt;
    TableSteps steps;
    steps.step = (count * sumXY - sumX * sumY) / spread;
    const double origin = (sumY - steps.step * sumX) / count;
    for (const std::uint32_t value : sorted) {
        const double y = value - sorted.front();
        const double x = std::nearbyint(y / step);
        if (x >= kMostCodes || std::fabs(origin + x * steps.step - y) > kMostOff) return std::nullopt;
    }
    steps.origin = origin + sorted.front();
    return steps;
}

/// Those between neighbours, each once, in order.
std::vector<std::uint32_t> Gaps(const std::vector<std::uint32_t>& sorted) {
    std::vector<std::uint32_t> gaps;
    for (std::size_t at = 1; at < sorted.size(); ++at) gaps.push_back(sorted[at] - sorted[at - 1]);
    std::sort(gaps.begin(), gaps.end());
    gaps.erase(std::unique(gaps.begin(), gaps.end()), gaps.end());
    return gaps;
}

/// Calls use(bit) for every bit that is set, in order. Most words are empty.
template <typename Use>
void ForEachSet(const std::vector<std::uint64_t>& words, const Use& use) {
    for (std::size_t word = 0; word < words.size(); ++word) {
        for (std::uint64_t left = words[word]; left != 0; left &= left - 1)
            use(64 * word + static_cast<std::size_t>(std::countr_zero(left)));
    }
}

WideScale ExactScale(double base, double step, double codeZero) {
    return {codeZero - base, step, static_cast<float>(step), static_cast<float>(codeZero)};
}

}  // namespace

std::optional<TableSteps> FindTableSteps(const std::vector<std::uint32_t>& sorted) {
    constexpr int mostParts = 8;
    if (sorted.size() < 3 || static_cast<double>(sorted.size()) > kMostCodes) return std::nullopt;
    const std::vector<std::uint32_t> gaps = Gaps(sorted);
    std::vector<std::uint32_t> above;
    for (const std::uint32_t value : sorted) above.push_back(value - sorted.front());
    const double gap = gaps.front();
    for (int parts = 1; parts <= mostParts && gap / parts >= kSmallestStep; ++parts) {
        double low = (gap - 2.0 * kMostOff) / parts;
        double high = (gap + 2.0 * kMostOff) / parts;
        if (Narrow(gaps, low, high) == Narrowed::Impossible) continue;
        if (Narrow(above, low, high) != Narrowed::Done) continue;
        if (const auto steps = Fit(sorted, (low + high) / 2.0)) return steps;
    }
    return std::nullopt;
}

WideScale ScaleOfColumn(const TableColumn& column, const std::optional<TableSteps>& steps) {
    constexpr double lowest = -32768.0;
    constexpr double highest = 32767.0;
    if (HasUnits(column) && (steps || UnitsOf(column) < kMostCodes)) {
        const double power = PowerOf(column);
        const double step = steps ? steps->step : 1.0;
        const double first = std::nearbyint(column.minimum * power) + (steps ? steps->origin : 0.0);
        const double codes = std::nearbyint(UnitsOf(column) / step);
        // Codes as they were where the value of code 0 was 0.
        const double code = std::nearbyint(first / step);
        const bool fromZero = std::fabs(first - code * step) <= kMostOff && code >= lowest && code + codes <= highest;
        const double middle = fromZero ? code : -std::floor((codes + 1.0) / 2.0);
        const double codeZero = fromZero ? 0.0 : first - middle * step;
        return ExactScale(column.base, step / power, codeZero / power);
    }
    return ChooseWideScale(column.minimum - column.base, column.maximum - column.base, false, 1.0, column.base);
}

TableStepSearch::TableStepSearch(const std::vector<TableColumn>& columns, std::shared_ptr<ByteSource> cells,
                                 std::uint64_t rows)
    : m_columns(columns.size()), m_cells(std::move(cells)), m_rows(rows) {
    std::size_t bits = 0;
    for (std::size_t at = 0; at < columns.size(); ++at) {
        const TableColumn& column = columns[at];
        if (!HasUnits(column) || column.decimals == 0 || UnitsOf(column) >= kMostUnits) continue;
        const auto units = static_cast<std::size_t>(UnitsOf(column)) + 1;
        bits += units;
        if (bits > kMostBits) break;
        const double power = PowerOf(column);
        m_searched.push_back(
            {at, (column.base - column.minimum) * power, power, units, std::vector<std::uint64_t>(units / 64 + 1)});
    }
    Collect(0, std::min(m_rows, kFirstRows));
    LeaveOutFine();
}

void TableStepSearch::LeaveOutFine() {
    std::erase_if(m_searched, [](const Searched& searched) {
        std::size_t last = searched.units;
        bool fine = false;
        ForEachSet(searched.seen, [&](std::size_t at) {
            fine = fine || (last < at && at - last < static_cast<std::size_t>(kSmallestStep));
            last = at;
        });
        return fine;
    });
}

void TableStepSearch::Collect(std::uint64_t first, std::uint64_t count) {
    const std::size_t rowBytes = m_columns * sizeof(float);
    const std::uint64_t pieceRows = std::max<std::uint64_t>(kPieceBytes / rowBytes, 1);
    std::vector<std::uint8_t> piece;
    for (const std::uint64_t end = first + count; first < end && !m_searched.empty();) {
        const std::uint64_t rows = std::min(pieceRows, end - first);
        piece.resize(static_cast<std::size_t>(rows) * rowBytes);
        m_cells->ReadExactly(first * rowBytes, piece.data(), piece.size());
        for (Searched& searched : m_searched) {
            const std::uint8_t* at = piece.data() + searched.column * sizeof(float);
            for (std::uint64_t row = 0; row < rows; ++row, at += rowBytes) {
                const double unit = std::nearbyint(static_cast<double>(LeFloat(at)) * searched.power + searched.base);
                // Missing values may lie outside.
                if (unit >= 0.0 && unit < static_cast<double>(searched.units))
                    searched.seen[static_cast<std::size_t>(unit) / 64] |= std::uint64_t{1}
                                                                          << static_cast<std::size_t>(unit) % 64;
            }
        }
        first += rows;
    }
}

bool TableStepSearch::More() {
    if (m_done >= m_rows || m_searched.empty()) return false;
    const std::uint64_t rows = std::max<std::uint64_t>(4 * kPieceBytes / (m_columns * sizeof(float)), 1);
    const std::uint64_t count = std::min(rows, m_rows - m_done);
    Collect(m_done, count);
    m_done += count;
    return m_done < m_rows;
}

double TableStepSearch::Share() const {
    return m_searched.empty() || m_rows == 0 ? 1.0 : static_cast<double>(m_done) / static_cast<double>(m_rows);
}

std::vector<std::optional<TableSteps>> TableStepSearch::Steps() const {
    std::vector<std::optional<TableSteps>> steps(m_columns);
    std::vector<std::uint32_t> sorted;
    for (const Searched& searched : m_searched) {
        sorted.clear();
        ForEachSet(searched.seen, [&](std::size_t at) { sorted.push_back(static_cast<std::uint32_t>(at)); });
        steps[searched.column] = FindTableSteps(sorted);
    }
    return steps;
}

}  // namespace quillon
