#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quillon {

/// Recently used folders, oldest first, at most kMost.
class PathList {
  public:
    static constexpr std::size_t kMost = 30;

    PathList() = default;
    /// Restores saved folders; empty ones are skipped, and if there are too many the last ones are kept.
    explicit PathList(std::vector<std::u16string> folders);

    /// Appends a folder that passes the test and is not in the list in any letter case; a full list loses its oldest.
    /// Returns whether the list has changed.
    bool Add(const std::u16string& folder, const std::function<bool(const std::u16string&)>& isFolder);

    [[nodiscard]] const std::vector<std::u16string>& Folders() const { return m_folders; }

  private:
    void DropOldest();

    std::vector<std::u16string> m_folders;
};

}  // namespace quillon
