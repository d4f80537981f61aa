#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// Units that differ by a metric prefix only are one group: "uV", "mV" and "V" are volts.
struct UnitGroup {
    std::u16string name;    ///< the base unit, or the unit itself
    double factor = 1.0;    ///< base units of one of the unit
    char16_t micro = u'u';  ///< how the unit writes a millionth: u, the micro sign or a Greek mu
    friend bool operator==(const UnitGroup&, const UnitGroup&) = default;
};

/// The group of a unit, blanks around it ignored. The prefixes p n u m k M G, with the micro sign and the Greek mu for
/// u, are folded in front of V A W J N g m s Hz Pa T S F H L bar bit Ohm (also as the letter omega). Any other text,
/// the empty one included, is a group of its own. Letter case counts.
[[nodiscard]] UnitGroup GroupOf(std::u16string_view unit);

/// A unit of a group with the prefix that suits a value in base units. `factor` are the base units of one of it.
struct GroupUnit {
    std::u16string text;
    double factor = 1.0;
};
[[nodiscard]] GroupUnit UnitFor(const UnitGroup& group, double value);

/// A value of a group, given in its base unit, with the prefix that suits it: "100 uV", "20 %"; the number alone for
/// the empty unit.
[[nodiscard]] std::u16string GroupValueText(const UnitGroup& group, double value, char16_t separator);

}  // namespace quillon
