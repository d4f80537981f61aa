#include "data/PathList.h"

#include <algorithm>

#include "base/Text.h"

namespace quillon {

PathList::PathList(std::vector<std::u16string> folders) : m_folders(std::move(folders)) {
    std::erase(m_folders, std::u16string());
    DropOldest();
}

bool PathList::Add(const std::u16string& folder, const std::function<bool(const std::u16string&)>& isFolder) {
    if (!isFolder(folder)) return false;
    const auto same = [lower = LowerCase(folder)](const std::u16string& other) { return LowerCase(other) == lower; };
    if (std::any_of(m_folders.begin(), m_folders.end(), same)) return false;
    m_folders.push_back(folder);
    DropOldest();
    return true;
}

void PathList::DropOldest() {
    if (m_folders.size() <= kMost) return;
    m_folders.erase(m_folders.begin(), m_folders.end() - static_cast<std::ptrdiff_t>(kMost));
}

}  // namespace quillon
