#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon {

struct EdfAnnotation {
    double onset = 0.0;  ///< seconds since the start date
    std::u16string text;
    double duration = 0.0;  ///< seconds; 0 where the file tells none
};

/// Collects annotations out of time-stamped annotation lists (EDF+): "+12.5 [0x15 duration] 0x14 text 0x14 text 0x14
/// 0".
///
/// The bytes of one signal in one record are fed in pieces of any size and closed with EndRecord. Lists that do not
/// hold to the form are left out and counted; durations that do not, and empty texts, are left out.
class EdfAnnotations {
  public:
    void Feed(std::string_view bytes);
    /// Closes the record. Returns the onset of its first list if that begins with an empty text, as the list that tells
    /// the onset of the record does.
    std::optional<double> EndRecord();

    /// In the order of the file.
    [[nodiscard]] const std::vector<EdfAnnotation>& All() const { return m_all; }
    [[nodiscard]] std::vector<EdfAnnotation> Take() { return std::move(m_all); }
    [[nodiscard]] std::size_t Malformed() const { return m_malformed; }
    /// True when there were more than memory is given for (some millions); the rest was left out.
    [[nodiscard]] bool LimitReached() const { return m_limitReached; }

  private:
    void EndList();
    void AddTexts(double onset, double duration, std::string_view texts);

    std::string m_list;  ///< bytes of the list under way
    bool m_tooLong = false;
    bool m_firstList = true;  ///< of the record
    std::optional<double> m_recordOnset;
    std::vector<EdfAnnotation> m_all;
    std::size_t m_bytes = 0;  ///< memory that the annotations take
    std::size_t m_malformed = 0;
    bool m_limitReached = false;
};

/// Seconds as annotations tell them: a sign, digits and at most one point. Nothing beyond some 300 years is accepted.
[[nodiscard]] std::optional<double> ParseOnset(std::string_view text);

/// Memory that the annotations of a file may take at most, in bytes. A damaged file could otherwise take many times its
/// own size.
inline constexpr std::size_t kAnnotationMemory = 1U << 28;

}  // namespace quillon
