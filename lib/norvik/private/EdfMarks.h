#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "norvik/private/EdfAnnotations.h"

namespace quillon {

/// The annotations of a file, added in parts in any order, and the marks that they make in blocks.
///
/// Where they take more memory than they may, the last ones of the file are left out, so that what is kept in the end
/// does not depend on the order.
class EdfMarks {
  public:
    explicit EdfMarks(std::size_t memory = kAnnotationMemory) : m_memory(memory) {}

    struct Mark {
        std::int32_t position = 0;  ///< sample index inside the block
        std::uint32_t part = 0;
        std::uint32_t index = 0;  ///< in the part
    };

    /// Adds the annotations of a part of the file, in its order; every part is added once. `cut`: there were more.
    void Add(std::uint32_t part, std::vector<EdfAnnotation> annotations, bool cut);
    /// Marks of a block that starts at `onset`, in order of position and, at one position, of the file. Valid until the
    /// next call. Costs little when asked again for the same block.
    [[nodiscard]] const std::vector<Mark>& Of(double onset, double rate, std::int32_t sampleCount);
    [[nodiscard]] const std::u16string& Text(const Mark& mark) const { return Of(mark).text; }
    [[nodiscard]] double Duration(const Mark& mark) const { return Of(mark).duration; }

    [[nodiscard]] std::size_t Count() const { return m_count; }
    /// The earliest onset and the latest end; none without an annotation.
    [[nodiscard]] std::optional<std::pair<double, double>> Extent() const;
    /// Counts the calls of Add that changed something.
    [[nodiscard]] std::int32_t Version() const { return m_version; }
    /// True when annotations were left out because they took too much memory.
    [[nodiscard]] bool LimitReached() const { return m_end != kNoEnd; }

  private:
    /// Place in the file: part, index.
    using Place = std::pair<std::uint32_t, std::uint32_t>;
    struct Entry {
        double onset = 0.0;
        Place place;
        bool operator<(const Entry& other) const { return std::tie(onset, place) < std::tie(other.onset, other.place); }
    };
    static constexpr Place kNoEnd{0xFFFFFFFF, 0xFFFFFFFF};

    [[nodiscard]] const EdfAnnotation& Of(const Mark& mark) const { return m_parts.at(mark.part)[mark.index]; }
    void LeaveOutLast();
    void Sort();

    std::size_t m_memory;
    std::size_t m_bytes = 0;
    std::size_t m_count = 0;
    std::int32_t m_version = 0;
    std::map<std::uint32_t, std::vector<EdfAnnotation>> m_parts;
    Place m_end = kNoEnd;         ///< annotations from here on are left out
    std::vector<Entry> m_sorted;  ///< by onset, up to m_sortedCount; behind it those added since
    std::size_t m_sortedCount = 0;
    std::vector<Mark> m_marks;  ///< of the block asked for last
    std::tuple<double, double, std::int32_t> m_marksOf;
    bool m_marksValid = false;
};

}  // namespace quillon
