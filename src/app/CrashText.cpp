#include "app/CrashText.h"

#include <algorithm>
#include <charconv>

namespace quillon {

namespace {

/// Where the linker places a program of 64 bits; the system loads it elsewhere.
constexpr std::uint64_t kLinkedBase = 0x140000000;

constexpr std::string_view kLineEnd = "\r\n";

struct CodeName {
    std::uint32_t code;
    std::string_view name;
};

constexpr std::uint32_t kAccessViolation = 0xC0000005;
constexpr std::uint32_t kPageError = 0xC0000006;

constexpr CodeName kNames[] = {
    {kAccessViolation, "access violation"},
    {kPageError, "page not readable"},
    {0xC000001D, "illegal instruction"},
    {0xC0000094, "integer division by zero"},
    {0xC0000096, "privileged instruction"},
    {0xC00000FD, "stack overflow"},
    {0xC0000374, "heap damaged"},
    {0xC000041D, "exception in a callback"},
    {0x80000003, "breakpoint"},
    {kUncaughtException, "C++ exception without a handler"},
    {kAborted, "abort"},
};

void AddNumber(BoundedText& text, std::uint64_t number, std::size_t digits, int base) {
    std::array<char, 24> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, base).ptr;
    std::transform(buffer.data(), end, buffer.data(),
                   [](char digit) { return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit; });
    const std::string_view written(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    constexpr std::string_view zeros = "0000000000000000";
    if (written.size() < digits) text.Add(zeros.substr(0, digits - written.size()));
    text.Add(written);
}

void AddPlace(BoundedText& text, const CodePlace& place) {
    constexpr std::size_t longestName = 40;
    text.Add("  ");
    if (place.in == CodePlace::In::Module) {
        text.Add(place.module.substr(0, longestName));
        text.Add("+");
        text.AddHex(place.offset);
    } else if (place.in == CodePlace::In::Program) {
        text.AddHex(kLinkedBase + place.offset);
    } else {
        text.AddHex(place.offset);
        text.Add(" outside all modules");
    }
    text.Add(kLineEnd);
}

}  // namespace

void BoundedText::Add(std::string_view text) {
    const std::size_t count = std::min(text.size(), m_text.size() - m_size);
    std::copy_n(text.data(), count, m_text.data() + m_size);
    m_size += count;
}

void BoundedText::AddDecimal(std::uint64_t number, std::size_t digits) {
    AddNumber(*this, number, digits, 10);
}

void BoundedText::AddHex(std::uint64_t number, std::size_t digits) {
    Add("0x");
    AddNumber(*this, number, digits, 16);
}

void CallList::Add(std::uint64_t address) {
    if (m_count < kFirst) {
        m_first[m_count] = address;
    } else {
        m_last[m_count % kLast] = address;
    }
    ++m_count;
}

std::uint64_t CallList::At(std::size_t index) const {
    if (index < kFirst) return m_first[index];
    return index + kLast < m_count ? 0 : m_last[index % kLast];
}

void AddCrashFacts(BoundedText& text, const CrashFacts& facts) {
    const auto part = [&](std::string_view before, std::uint64_t number, std::size_t digits = 1) {
        text.Add(before);
        text.AddDecimal(number, digits);
    };
    part("Quillon ", QUILLON_VERSION_MAJOR);
    part(".", QUILLON_VERSION_MINOR);
    part(".", QUILLON_VERSION_REVISION);
    part("\r\nTime: ", static_cast<std::uint64_t>(facts.time.year), 4);
    part("-", static_cast<std::uint64_t>(facts.time.month), 2);
    part("-", static_cast<std::uint64_t>(facts.time.day), 2);
    part(" ", static_cast<std::uint64_t>(facts.time.hour), 2);
    part(":", static_cast<std::uint64_t>(facts.time.minute), 2);
    part(":", static_cast<std::uint64_t>(facts.time.second), 2);
    part(" UTC\r\nWindows: ", facts.system[0]);
    part(".", facts.system[1]);
    part(".", facts.system[2]);
    text.Add("\r\nException: ");
    text.AddHex(facts.code, 8);
    const auto* const named = std::find_if(std::begin(kNames), std::end(kNames),
                                           [&](const CodeName& name) { return name.code == facts.code; });
    if (named != std::end(kNames)) {
        text.Add(" ");
        text.Add(named->name);
    }
    if (facts.code == kAccessViolation || facts.code == kPageError) {
        text.Add(facts.access[0] == 0 ? " reading " : facts.access[0] == 1 ? " writing " : " executing ");
        text.AddHex(facts.access[1], 16);
    }
    if (!facts.thrown.empty()) {
        constexpr std::size_t longestType = 200;
        text.Add(" of type ");
        text.Add(facts.thrown.substr(0, longestType));
    }
    text.Add(kLineEnd);
}

void AddCalls(BoundedText& text, const CallList& calls, CodePlace (*placeOf)(std::uint64_t address)) {
    text.Add("Calls, innermost first, those of the program for addr2line -Cfie quillon.debug:\r\n");
    for (std::size_t index = 0; index < std::min(calls.Count(), CallList::kFirst); ++index)
        AddPlace(text, placeOf(calls.At(index)));
    const std::size_t last =
        calls.Count() > CallList::kFirst + CallList::kLast ? calls.Count() - CallList::kLast : CallList::kFirst;
    if (last > CallList::kFirst) {
        text.Add("  ... ");
        text.AddDecimal(last - CallList::kFirst);
        text.Add(" more\r\n");
    }
    for (std::size_t index = last; index < calls.Count(); ++index) AddPlace(text, placeOf(calls.At(index)));
}

}  // namespace quillon
