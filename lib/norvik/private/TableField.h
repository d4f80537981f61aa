#pragma once

#include <string_view>
#include <vector>

#include "norvik/private/TableNumber.h"

namespace quillon {

enum class FieldKind { Number, Missing, Moment, Text };

/// How the fields of a table's lines are told apart.
struct TableFormat {
    char separator = '\t';  ///< a blank stands for any run of blanks and tabs
    char decimal = '.';
};

[[nodiscard]] inline bool IsTableBlank(char letter, const TableFormat& format) {
    return letter == ' ' || (letter == '\t' && format.separator == ' ');
}

/// Takes the field at `at` of a line that ends at `end`; returns where its separator stands, or `end`. The field has
/// neither blanks around it nor quotes; quotes that are doubled inside it stay.
const char* TakeTableField(const char* at, const char* end, const TableFormat& format, std::string_view& field);

/// A line without its end. A blank at its end makes no field where blanks separate.
[[nodiscard]] std::vector<std::string_view> SplitTableLine(std::string_view line, const TableFormat& format);

/// Whether the whole field is a number.
[[nodiscard]] bool ParseNumberField(std::string_view field, char decimal, TableNumber& number);

/// The same with a point or a comma, for numbers that stand alone in a line.
[[nodiscard]] bool ParseLoneNumber(std::string_view line, TableNumber& number);

/// What a field is, `decimal` being the decimal sign. Infinities count as missing.
[[nodiscard]] FieldKind KindOfField(std::string_view field, char decimal);

/// Whether a line says nothing about rows: empty, or a remark.
[[nodiscard]] bool IsTableRemark(std::string_view line, const TableFormat& format);

}  // namespace quillon
