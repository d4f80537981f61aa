#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quillon {

/// Paths of the recordings that were opened, the latest first, at most kMost; each once in whatever letter case.
class RecentRecordings {
  public:
    static constexpr std::size_t kMost = 12;

    RecentRecordings() = default;
    /// Restores stored paths. What is no absolute path of a file is left out, as are repeats and what is too much.
    explicit RecentRecordings(const std::vector<std::u16string>& paths);

    /// Puts a path to the front.
    void Add(const std::u16string& path);
    void Clear() { m_paths.clear(); }

    [[nodiscard]] const std::vector<std::u16string>& Paths() const { return m_paths; }

  private:
    std::vector<std::u16string> m_paths;
};

/// The recording that was open when the window was closed.
struct LastRecording {
    std::u16string path;   ///< empty: there was none yet
    std::u16string place;  ///< see LastPlace; empty: its start
};

/// Line of a menu for the recording at an index of the list: its number, which is its key up to the tenth, its name, a
/// tab, and its folder; both cut where they are long.
[[nodiscard]] std::u16string RecentCaption(std::size_t index, const std::u16string& path);

}  // namespace quillon
