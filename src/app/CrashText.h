#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/DateTime.h"

/// The text that a crashed program leaves for its developers. Everything is kept in buffers of fixed size: what brought
/// the program down may be its heap. It holds nothing of the user, no path and no name of a file.
namespace quillon {

/// A text in a buffer of its own; what does not fit is dropped.
class BoundedText {
  public:
    void Clear() { m_size = 0; }
    void Add(std::string_view text);
    /// With leading zeros up to that many digits.
    void AddDecimal(std::uint64_t number, std::size_t digits = 1);
    /// The same behind "0x".
    void AddHex(std::uint64_t number, std::size_t digits = 1);
    [[nodiscard]] std::string_view Text() const { return {m_text.data(), m_size}; }

  private:
    std::array<char, 8192> m_text{};
    std::size_t m_size = 0;
};

/// Addresses of the calls on a stack, from the innermost on: the first and the last ones are kept. Between them a
/// recursion without end has many thousands.
class CallList {
  public:
    static constexpr std::size_t kFirst = 40;
    static constexpr std::size_t kLast = 24;

    void Clear() { m_count = 0; }
    void Add(std::uint64_t address);
    [[nodiscard]] std::size_t Count() const { return m_count; }
    /// Of `index` below Count(); 0 for one that was not kept.
    [[nodiscard]] std::uint64_t At(std::size_t index) const;

  private:
    std::array<std::uint64_t, kFirst> m_first{};
    std::array<std::uint64_t, kLast> m_last{};  ///< a ring
    std::size_t m_count = 0;
};

/// Where an address lies.
struct CodePlace {
    enum class In { Program, Module, Nowhere };
    In in = In::Nowhere;
    std::string_view module = {};  ///< name of the file, for In::Module
    std::uint64_t offset = 0;      ///< from the start of program or module; the address itself for In::Nowhere
};

struct CrashFacts {
    std::array<std::uint32_t, 3> system{};  ///< version of Windows: major, minor, build
    CivilTime time;                         ///< universal time
    std::uint32_t code = 0;                 ///< exception code of Windows, or one of CrashCode
    /// Of an invalid access to memory: 0 reading, 1 writing, 8 executing; and the address.
    std::array<std::uint64_t, 2> access{};
    std::string_view thrown = {};  ///< of an exception that nobody caught, the type's name as the compiler writes it
};

/// Codes beside those of the system, in the range that it leaves to programs.
enum CrashCode : std::uint32_t { kUncaughtException = 0xE0000001, kAborted = 0xE0000002 };

/// The first lines: version, time, system, what happened.
void AddCrashFacts(BoundedText& text, const CrashFacts& facts);

/// A line per call. Addresses inside the program are given as it was linked, as addr2line reads them.
void AddCalls(BoundedText& text, const CallList& calls, CodePlace (*placeOf)(std::uint64_t address));

}  // namespace quillon
