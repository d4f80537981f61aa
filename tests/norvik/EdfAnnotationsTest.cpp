#include "norvik/EdfAnnotations.h"

#include <gtest/gtest.h>

#include "base/Text.h"

namespace quillon {
namespace {

/// Bytes of lists: "|" ends a text, "~" begins a duration, "_" is a zero.
std::string Lists(std::string text) {
    for (char& sign : text) sign = sign == '|' ? '\x14' : sign == '~' ? '\x15' : sign == '_' ? '\0' : sign;
    return text;
}

/// What one record gives: "onset;" when it tells one, "at text;" of every annotation, "!" for every damaged list.
std::string Parse(const std::string& bytes, std::size_t piece) {
    EdfAnnotations annotations;
    for (std::size_t at = 0; at < bytes.size(); at += piece)
        annotations.Feed(std::string_view(bytes).substr(at, piece));
    const std::optional<double> onset = annotations.EndRecord();
    std::string out = onset ? Utf8(ShortestDecimal(*onset)) + ";" : "";
    for (const EdfAnnotation& annotation : annotations.All()) {
        out += Utf8(ShortestDecimal(annotation.onset)) + " " + Utf8(annotation.text) + ";";
    }
    return out + std::string(annotations.Malformed(), '!');
}

TEST(EdfAnnotations, ListsHoldToTheirFormOrAreCounted) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"-0.065||Recording starts|___", "-0.065;-0.065 Recording starts;"},
        {"+1||_+1.5~2.25|a|b|__+2|c|", "1;1.5 a;1.5 b;2 c;"},
        {"+3|text first|_+4||_", "3 text first;"},  // tells no onset of the record
        {"+1||_+2|caf\xE9 |_+3|caf\xC3\xA9|_", "1;2 caf\xC3\xA9 ;3 caf\xC3\xA9;"},
        {"+12345678.000000001|a|_", "12345678.000000002 a;"},
        // No sign, no digits, an exponent, two points, a number that is none, no end, not even a stamp.
        {"5|a|_+|a|_+1e3|a|_+1.2.3|a|_+nan|a|_+5|a_+5", "!!!!!!!"},
        {"+99999999999999|a|_--1|a|_||_~~_ +1|a|_", "!!!!!"},
        {"+1||" + std::string(2000000, 'x') + "|_+2|b|_", "2 b;!"},
        {"___", ""}};
    for (const auto& [text, expected] : cases) {
        for (const std::size_t piece : {1U, 3U, 1000000U}) EXPECT_EQ(Parse(Lists(text), piece), expected) << piece;
    }
}

TEST(EdfAnnotations, RecordsDoNotRunIntoEachOther) {
    EdfAnnotations annotations;
    const auto record = [&](const std::string& text) {
        annotations.Feed(Lists(text));
        return annotations.EndRecord();
    };
    EXPECT_EQ(record("+1||"), 1.0);
    EXPECT_EQ(record("|a|"), std::nullopt);
    EXPECT_EQ(record("+3||"), 3.0);
    EXPECT_EQ(record(""), std::nullopt);
    EXPECT_EQ(annotations.Malformed(), 1U);
}

}  // namespace
}  // namespace quillon
