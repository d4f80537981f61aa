#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include "norvik/private/TableCells.h"
#include "norvik/private/TableHead.h"
#include "norvik/private/TableTime.h"

namespace quillon {

/// What has been seen of a column of values.
struct TableColumn {
    double base = 0.0;  ///< the first value; cells are kept as singles of what they are above it
    double minimum = std::numeric_limits<double>::infinity();
    double maximum = -std::numeric_limits<double>::infinity();
    int decimals = 0;   ///< the most
    bool exact = true;  ///< all are whole numbers times 10^-decimals
};

/// What is wrong with the rows. Lines count from 1.
struct TableFaults {
    std::uint64_t words = 0;  ///< cells that are no numbers
    std::uint64_t firstWord = 0;
    std::uint64_t lines = 0;  ///< left out for their number of columns
    std::uint64_t firstLine = 0;
    bool cut = false;            ///< the last line is not whole
    std::uint64_t stopLine = 0;  ///< where reading has ended before the end; 0: it has not
    bool tooManyGaps = false;    ///< the reason; else there were too many faulty lines
};

/// Makes cells out of the lines of a table: for every row a single for each column of values, little-endian, row by
/// row. Missing values are kept as zeros.
class TableRows {
  public:
    explicit TableRows(const TableHead& head);

    /// Takes whole lines, each with an LF, the first ones being those above the rows. `unended`: the last one had no
    /// line end. False when no more are wanted. Throws FormatError where the cells cannot be kept.
    bool Feed(std::string_view lines, bool unended);

    [[nodiscard]] std::uint64_t Rows() const { return m_rows; }
    [[nodiscard]] const std::shared_ptr<TableCells>& Cells() const { return m_cells; }
    [[nodiscard]] const std::vector<TableColumn>& Columns() const { return m_columns; }
    [[nodiscard]] const TableTiming& Timing() const { return m_timing; }
    [[nodiscard]] const TableFaults& Faults() const { return m_faults; }

  private:
    /// A cell in the row that is being read.
    struct Cell {
        double value;
        int decimals;
        bool exact;
    };

    /// Returns whether the line has as many fields as a row.
    bool ParseLine(const char* at, const char* end);
    void TakeWord(std::string_view field, TableRole role, Cell& cell);
    [[nodiscard]] double TimeOfRow();
    bool KeepRow();
    /// False where there are too many of them.
    bool LeaveOut();
    [[nodiscard]] static bool IsRemark(const char* at, const char* end, char separator);

    TableFormat m_format;
    std::vector<TableRole> m_roles;
    std::uint64_t m_headerLines;
    bool m_isClock;
    std::uint64_t m_line = 0;
    std::uint64_t m_rows = 0;
    double m_day = 0.0;  ///< seconds that clock times have gone on beyond a day
    double m_lastTime = 0.0;
    double m_time = 0.0;        ///< of the row that is being read
    std::uint64_t m_words = 0;  ///< in it
    std::vector<Cell> m_row;
    std::vector<float> m_kept;
    std::vector<TableColumn> m_columns;
    TableTiming m_timing;
    TableFaults m_faults;
    std::shared_ptr<TableCells> m_cells = std::make_shared<TableCells>();
};

}  // namespace quillon
