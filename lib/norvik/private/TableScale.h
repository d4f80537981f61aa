#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "norvik/private/ByteSource.h"
#include "norvik/private/TableRows.h"
#include "norvik/private/WideScale.h"

namespace quillon {

/// Values that are codes times a scale, rounded to some decimals: value = origin + code x step, in units of the last
/// decimal.
struct TableSteps {
    double step = 0.0;
    double origin = 0.0;  ///< that of the lowest value
};

/// Finds the steps between distinct values, which are `sorted` and counted in units of the last decimal. Nothing where
/// there are none of 8 units at least, or more than 16 bits hold.
[[nodiscard]] std::optional<TableSteps> FindTableSteps(const std::vector<std::uint32_t>& sorted);

/// The scale of a column's cells: exact by `steps`, or where the decimals written fit 16 bits, else the best.
[[nodiscard]] WideScale ScaleOfColumn(const TableColumn& column, const std::optional<TableSteps>& steps);

/// Collects the distinct values of those columns that may have steps, in pieces.
class TableStepSearch {
  public:
    TableStepSearch(const std::vector<TableColumn>& columns, std::shared_ptr<ByteSource> cells, std::uint64_t rows);

    /// Reads about 1 MiB; returns whether more is left. Throws ReadError.
    bool More();
    [[nodiscard]] double Share() const;
    /// By column, once nothing is left.
    [[nodiscard]] std::vector<std::optional<TableSteps>> Steps() const;

  private:
    struct Searched {
        std::size_t column;
        double base;   ///< value of the cells' zero, in units of the last decimal above the minimum
        double power;  ///< units of the last decimal in 1
        std::size_t units;
        std::vector<std::uint64_t> seen;  ///< a bit for each
    };

    /// Leaves out the columns whose first rows have values less than a step apart.
    void LeaveOutFine();
    void Collect(std::uint64_t first, std::uint64_t count);

    std::size_t m_columns;
    std::shared_ptr<ByteSource> m_cells;
    std::uint64_t m_rows;
    std::uint64_t m_done = 0;
    std::vector<Searched> m_searched;
};

}  // namespace quillon
