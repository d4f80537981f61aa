#include "app/CrashText.h"

#include <gmock/gmock.h>

namespace quillon {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

std::string TextOf(const CrashFacts& facts) {
    BoundedText text;
    AddCrashFacts(text, facts);
    return std::string(text.Text());
}

TEST(CrashText, TellsWhatHappenedWhenAndWhere) {
    CrashFacts facts;
    facts.system = {10, 0, 19045};
    facts.time = {2026, 3, 7, 4, 5, 59, 0};
    facts.code = 0xC0000005;
    facts.access = {1, 0x10};
    EXPECT_THAT(TextOf(facts), EndsWith("\r\nTime: 2026-03-07 04:05:59 UTC\r\nWindows: 10.0.19045\r\n"
                                        "Exception: 0xC0000005 access violation writing 0x0000000000000010\r\n"));
    facts.access = {8, 0};
    EXPECT_THAT(TextOf(facts), HasSubstr("executing 0x0000000000000000"));
    facts.code = 0xC00000FD;
    EXPECT_THAT(TextOf(facts), EndsWith("0xC00000FD stack overflow\r\n")) << "its numbers are no address";
    facts.code = 0x1234;
    EXPECT_THAT(TextOf(facts), EndsWith("Exception: 0x00001234\r\n"));
    facts.code = kUncaughtException;
    facts.thrown = "St9exception";
    EXPECT_THAT(TextOf(facts), EndsWith("without a handler of type St9exception\r\n"));
    const std::string endless(100000, 'x');
    facts.thrown = endless;
    EXPECT_LT(TextOf(facts).size(), 500U);
}

TEST(CrashText, CallsOfTheProgramAreThoseOfTheLinkedFileAndTheMiddleOfARecursionIsLeftOut) {
    const auto placeOf = [](std::uint64_t address) -> CodePlace {
        if (address < 0x1000) return {CodePlace::In::Program, {}, address};
        if (address < 0x2000) return {CodePlace::In::Module, "KERNEL32.dll", address - 0x1000};
        return {CodePlace::In::Nowhere, {}, address};
    };
    CallList calls;
    BoundedText text;
    for (const std::uint64_t address : {0xABCU, 0x1010U, 0xFFF00000U}) calls.Add(address);
    AddCalls(text, calls, placeOf);
    EXPECT_THAT(std::string(text.Text()),
                EndsWith(":\r\n  0x140000ABC\r\n  KERNEL32.dll+0x10\r\n  0xFFF00000 outside all modules\r\n"));
    // Every number of calls: all are named, or the first and the last ones.
    constexpr std::size_t kept = CallList::kFirst + CallList::kLast;
    for (std::size_t count :
         {std::size_t{1}, CallList::kFirst, CallList::kFirst + 1, kept - 1, kept, kept + 1, std::size_t{20000}}) {
        calls.Clear();
        text.Clear();
        for (std::size_t call = 0; call < count; ++call) calls.Add(0x5000 + call);
        AddCalls(text, calls, placeOf);
        const std::string all(text.Text());
        EXPECT_EQ(std::count(all.begin(), all.end(), '\n'),
                  static_cast<std::ptrdiff_t>(1 + (count > kept ? kept + 1 : count)));
        const auto line = [&](std::size_t call) {
            BoundedText number;
            number.AddHex(0x5000 + call);
            return "  " + std::string(number.Text()) + " outside";
        };
        for (std::size_t call = 0; call < count; call += 1 + count / 100) {
            const bool isKept = call < CallList::kFirst || call + CallList::kLast >= count;
            EXPECT_EQ(all.find(line(call)) != std::string::npos, isKept) << call << " of " << count;
        }
        EXPECT_THAT(all, HasSubstr(line(count - 1) + " all modules\r\n"));
        EXPECT_EQ(all.find("\r\n  ... " + std::to_string(count - kept) + " more\r\n") != std::string::npos,
                  count > kept);
    }
}

TEST(CrashText, WhatDoesNotFitIsDropped) {
    BoundedText text;
    for (int round = 0; round < 1000; ++round) text.Add("0123456789");
    EXPECT_THAT(std::string(text.Text()), EndsWith("01"));
    text.AddDecimal(7, 99);
    text.Clear();
    text.AddDecimal(0);
    text.AddHex(~std::uint64_t{0});
    text.AddDecimal(~std::uint64_t{0});
    EXPECT_EQ(text.Text(), "00xFFFFFFFFFFFFFFFF18446744073709551615");
}

}  // namespace
}  // namespace quillon
