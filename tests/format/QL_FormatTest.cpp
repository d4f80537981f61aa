#include "format/QL_Format.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "base/Text.h"

namespace quillon {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// The number at the start of a text, blanks in front skipped.
template <typename Real = double>
Real Parsed(std::u16string_view text) {
    const std::string bytes = Utf8(text);
    const std::size_t first = std::min(bytes.find_first_not_of(' '), bytes.size());
    Real number{};
    std::from_chars(bytes.data() + first, bytes.data() + bytes.size(), number);
    return number;
}

/// The texts of several numbers, for comparing them at once.
template <typename Write>
std::string Texts(std::initializer_list<double> numbers, Write write) {
    std::u16string texts;
    for (const double number : numbers) texts += write(number) + u'|';
    return Utf8(texts);
}

std::string Values(std::initializer_list<double> values, std::u16string_view unit, const FormatOptions& options = {}) {
    return Texts(values, [&](double value) { return FormatValue(static_cast<float>(value), unit, options); });
}

FormatOptions Unit(int timeUnit) {
    return {.timeUnit = timeUnit};
}

std::u16string Hertz(double hertz) {
    return FormatFrequency(hertz, u" ", false, {});
}

TEST(NumberText, EveryNumberReadsBackInItsOwnPrecision) {
    std::mt19937_64 random(1);
    for (int round = 0; round < 100000; ++round) {
        const std::uint64_t bits = random();
        const double any = std::bit_cast<double>(bits);
        const auto single = std::bit_cast<float>(static_cast<std::uint32_t>(bits >> 32));
        ASSERT_TRUE(!std::isfinite(any) || Parsed(NumberText(any, u'.')) == any) << any;
        ASSERT_TRUE(!std::isfinite(single) || Parsed<float>(SingleNumberText(double{single}, u'.')) == single)
            << single;
        const double decimal = static_cast<double>(static_cast<std::int64_t>(bits) / 10000) / 1e4;
        ASSERT_EQ(Parsed(NumberText(decimal, u'.')), decimal);
    }
    const auto wide = [](double number) { return NumberText(number, u','); };
    const auto narrow = [](double number) { return SingleNumberText(number, u'.'); };
    EXPECT_EQ(Texts({0.05, -1200, -0.0, 999999999999999, 1e15}, wide), "0,05|-1200|0|999999999999999|1E+15|");
    EXPECT_EQ(Texts({1e-15, -1.25e-101, 9e-16}, wide), "0,000000000000001|-1,25E-101|9E-16|");
    EXPECT_EQ(Texts({0.1 + 0.2, 99999997952.0, 1e39}, narrow), "0.3|100000000000|1E+39|");
}

TEST(NumberText, ExponentsChangeExactlyAtPowersOfTen) {
    for (int n = -307; n <= 308; ++n) {
        const double power = Parsed(u"1E" + Decimal(n));
        ASSERT_EQ(DecimalExponent(power), n);
        ASSERT_EQ(DecimalExponent(-std::nextafter(power, 0.0)), n - 1) << n;
    }
    for (const double none : {0.0, kNan, kInfinity}) EXPECT_EQ(DecimalExponent(none), 0);
}

TEST(NumberText, ClockTime) {
    const auto elapsed = [](double seconds) { return ClockText(seconds, false, u'.'); };
    const auto timeOfDay = [](double seconds) { return ClockText(seconds, true, u','); };
    EXPECT_EQ(Texts({75, 3599.99996, -3661.5, -0.00004, 360000, -kInfinity}, elapsed),
              "0:01:15|1:00:00|-1:01:01.5|0:00:00|100:00:00|-Inf|");
    EXPECT_EQ(Texts({0.00025, 0.00035, 10.06255}, elapsed), "0:00:00.0002|0:00:00.0004|0:00:10.0626|");
    EXPECT_EQ(Texts({90000.25, 86399.99996, -1}, timeOfDay), "1:00:00,25|0:00:00|23:59:59|");
}

TEST(NumberText, Patterns) {
    const auto write = [](std::initializer_list<double> values, std::u16string_view pattern) {
        return Texts(values, [&](double value) { return FormatPattern(value, pattern, u','); });
    };
    EXPECT_EQ(write({2.5, -3.5, -0.5, kNan}, u"#0"), "2|-4|0|NaN|");
    EXPECT_EQ(write({-0.04, 0.25, 12}, u"0.0"), "0,0|0,2|12,0|");
    EXPECT_EQ(write({1.5, 0.12345, -1e-9}, u"0.00##"), "1,50|0,1234|0,00|");
    EXPECT_EQ(write({0.00125, -1}, u"0.0##%"), "0,125%|-100,0%|");
    EXPECT_EQ(write({20, -1.25}, u"0.## M"), "20 M|-1,25 M|");
    EXPECT_EQ(write({7}, u"000") + write({5}, u""), "007|5|");
    EXPECT_EQ(ScaleNumberPattern(-0.5F) + ScaleNumberPattern(0.01F) + ScaleNumberPattern(1.0F), u"0.0#0.0##0");
}

TEST(FormatValue, ChoosesThePrefixAndAddsThatOfTheUnit) {
    EXPECT_EQ(Values({0, 0.05, -150, 1e5, -9.99999, 0.0001}, u""), " 0 V| 50 mV|-0.15 kV| 0.1 MV|-10 V| 0.1 mV|");
    EXPECT_EQ(Values({-0.0, 0.5, 2e-5, 100}, u"mV"), " 0 mV| 500 mV| 20000 nV| 100 V|");
    EXPECT_EQ(Values({1.5, 2e-5, 3e5}, u"kHz"), " 0.0015 kHz| 0.02 mHz| 0.0003 GHz|");
    EXPECT_EQ(Values({2, 200}, u"m/s"), " 2000 m/s| 200 /s|");
    EXPECT_EQ(Values({2, 2e-5}, u"m"), " 2 m| 20 mkm|");
    for (const std::u16string unit : {u"K", u"\u00B0C", u"mmHg", u"%", u"mkV", u"MHz", u"FS", u"mK", u"v"}) {
        const std::string end = " " + Utf8(unit) + "|";
        EXPECT_EQ(Values({123456, -2e-5}, unit), " 123456" + end + "-0.00002" + end);
    }
    const FormatOptions plain{.unitScaling = false, .decimalSeparator = u','};
    EXPECT_EQ(Values({0.05, -2e5}, u"mV", plain), " 0,05 mV|-200000 mV|");
    EXPECT_EQ(ChoosePrefix(0.05F, u"", plain).unit + ChoosePrefix(0.0F, u"A", {}).unit, u"VmkA");
    const std::pair<float, int> bounds[] = {{1e5F, -6}, {100.0F, -3}, {0.1F, 0}, {1e-4F, 3}};
    for (const auto& [bound, exponent] : bounds) {
        EXPECT_EQ(ChoosePrefix(-bound, u"V", {}).exponent, exponent);
        EXPECT_EQ(ChoosePrefix(std::nextafter(bound, 0.0F), u"V", {}).exponent, exponent + 3);
    }
}

TEST(FormatValue, DigitsFollowTheOptions) {
    FormatOptions digits{.digitsCount = 2};
    EXPECT_EQ(Values({12.5, -13.5, 123456, 0.0001171875}, u"K", digits), " 12 K|-14 K| 123456 K| 0.00012 K|");
    digits.digitsAreDecimals = true;
    EXPECT_EQ(Values({2.125, -0.004, 0.0625}, u"K", digits), " 2.12 K| 0 K| 0.06 K|");
    digits.digitsCount = std::numeric_limits<int>::max();
    EXPECT_EQ(Values({0.1, 1e-45}, u"K", digits), " 0.1 K| 1E-45 K|");
    digits.digitsCount = -1;
    EXPECT_EQ(Values({12.34567}, u"K", digits), " 12.346 K|");
    // Any unit and magnitude: the text reads back as the value to half a unit of the fifth digit.
    std::mt19937 random(3);
    for (int round = 0; round < 50000; ++round) {
        const double magnitude = std::pow(10.0, std::uniform_real_distribution<double>(-30, 30)(random));
        const auto value = static_cast<float>(round % 2 == 0 ? magnitude : -magnitude);
        std::u16string unit(kUnits[static_cast<std::size_t>(round) % kUnits.size()]);
        if (round % 3 > 0) unit.insert(0, 1, round % 3 == 1 ? u'm' : u'k');
        const PrefixedUnit prefixed = ChoosePrefix(value, unit, {});
        const std::u16string text = FormatValue(value, unit, {});
        const double expected = static_cast<double>(value) * std::pow(10.0, prefixed.exponent);
        const double tolerance = 0.501 * std::pow(10.0, std::floor(std::log10(std::fabs(expected))) - 4.0);
        ASSERT_NEAR(Parsed(text), expected, tolerance + std::fabs(expected) * 1e-7) << Utf8(text);
        ASSERT_TRUE(text.ends_with(u' ' + prefixed.unit) && text.front() == (value < 0.0F ? u'-' : u' '));
    }
}

TEST(FormatTime, UnitFollowsTheTime) {
    const auto write = [](double seconds) { return FormatTime(seconds, u" ", {}); };
    EXPECT_EQ(Texts({0, 0.005, 1e-6, 75, 12.34567891}, write), "0 s|5 ms|1 mks|0:01:15|12.3457 s|");
    EXPECT_EQ(Texts({60, -60, 59.99999, 0.01, 0.00999999}, write), "0:01:00|-0:01:00|60 s|0.01 s|9.99999 ms|");
    EXPECT_EQ(Texts({1e-5, -9.5e-6, 1e-300}, write), "0.01 ms|-9.5 mks|0 mks|");
    const std::u16string_view fixed[] = {u"0:01:30", u"1.5;min", u"90;s", u"90000;ms", u"90000000;mks", u"90;s"};
    for (int unit = 1; unit <= 6; ++unit) EXPECT_EQ(FormatTime(90, u";", Unit(unit)), fixed[unit - 1]);
    const FormatOptions timeOfDay{.timeUnit = 4, .timeOfDay = true};
    EXPECT_EQ(FormatTime(86400.5, u" ", timeOfDay) + FormatTimeNumber(86401, 1e-4, timeOfDay), u"0:00:00.50:00:01");
}

TEST(FormatTime, LabelsOfAScaleShareTheUnitOfTheStep) {
    const auto label = [](double step, int unit = 0) {
        return [=](double seconds) { return FormatTimeNumber(seconds, step, Unit(unit)); };
    };
    EXPECT_EQ(Texts({30, -120.5}, label(60)), "0:00:30|-0:02:00.5|");
    EXPECT_EQ(Texts({120, 0.3000004, -1e-7}, label(std::nextafter(60.0, 0.0))), "120|0.3|0|");
    EXPECT_EQ(Texts({75, 123456789.0123455}, label(0.001)), "75|123456789.012346|");  // not in single precision
    EXPECT_EQ(Texts({75, 0.1 + 0.2, 0.12345678}, label(-0.0009)), "75000|300|123.4568|");
    EXPECT_EQ(Texts({100}, label(1, 2)) + Texts({0.0000123456}, label(1, 5)) + Texts({1}, label(1, -1)),
              "1.66667|12.346|1|");
    EXPECT_EQ(FormatAxisValue(75, 1, AxisKind::Frequency, {}), u"75");
    EXPECT_EQ(FormatAxisValue(75, 60, AxisKind::Amplitude, {}), u"0:01:15");
    EXPECT_EQ(FormatAxisValueWithUnit(0.5, AxisKind::Frequency, u" ", {}), u"0.5 Hz");
    EXPECT_EQ(FormatAxisValueWithUnit(0.005, AxisKind::Time, u" ", {}), u"5 ms");
}

TEST(FormatFrequency, UnitsMeetAtTheirBounds) {
    EXPECT_EQ(Texts({0.5, -5, 1, 999.9996, 1000, 1e6, 1e9}, Hertz),
              "30 /min|-300 /min|1 Hz|1000 Hz|1 kHz|1 \u041CHz|1 GHz|");
    EXPECT_EQ(Texts({2.0625, 1.0015, 44100}, Hertz), "2.062 Hz|1.002 Hz|44.1 kHz|");
    EXPECT_EQ(FormatFrequency(0.25, u"", true, {}), u"0.25Hz");
    EXPECT_EQ(FormatFrequency(1e6, u" ", true, {}), u"1000000 Hz");
}

TEST(Format, EveryNumberGivesAText) {
    EXPECT_EQ(Values({kNan, -kInfinity}, u"V"), " NaN V|-Inf V|");
    EXPECT_EQ(FormatTime(kNan, u" ", {}), u"NaN s");
    EXPECT_EQ(Hertz(kInfinity), u"Inf GHz");
    for (const double extreme : {kNan, kInfinity, 5e-324, 1e-45, 3.4028235677973366e38, 1e14, 9.3e18, 1.7e308}) {
        for (const double value : {extreme, -extreme}) {
            std::vector<std::u16string> texts{
                Hertz(value), FormatPattern(value, u"0.0##%", u'.'),
                FormatValue(static_cast<float>(std::clamp(value, -3e38, 3e38)), u"K", {})};
            for (int unit = 0; unit <= 5; ++unit) {
                texts.push_back(FormatTime(value, u" ", Unit(unit)));
                texts.push_back(FormatTimeNumber(value, value, Unit(unit)));
            }
            for (const std::u16string& text : texts) {
                EXPECT_FALSE(text.empty() || text.size() > 330);
                EXPECT_FALSE(text.starts_with(u"-0 ") || text == u"-0") << Utf8(text);
            }
        }
    }
}

}  // namespace
}  // namespace quillon
