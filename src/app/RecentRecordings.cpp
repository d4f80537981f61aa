#include "app/RecentRecordings.h"

#include <algorithm>
#include <string_view>

#include "app/Captions.h"
#include "app/PathArgument.h"
#include "base/FilePath.h"
#include "base/Text.h"
#include "norvik/RegistryObject.h"

namespace quillon {

namespace {

constexpr std::u16string_view kSeparators = u"\\/";
constexpr std::size_t kLongestName = 48;
constexpr std::size_t kLongestFolder = 56;

bool IsSeparator(char16_t letter) {
    return kSeparators.find(letter) != kSeparators.npos;
}

/// An absolute path of a file that can be stored and shown.
bool IsUsable(const std::u16string& path) {
    if (path.size() < 4 || path.size() > RegistryObject::kLongestText || IsDevicePath(path)) return false;
    const bool ofDrive = path[1] == u':' && IsSeparator(path[2]);
    const bool ofServer = IsSeparator(path[0]) && IsSeparator(path[1]);
    const bool plain = std::none_of(path.begin(), path.end(), [](char16_t letter) { return letter < u' '; });
    return plain && (ofDrive || ofServer) && NameStart(path) < path.size();
}

bool IsSecondHalf(char16_t letter) {
    return (letter & 0xFC00U) == 0xDC00U;
}

/// Without its middle where it is longer. Pairs of surrogates stay whole.
std::u16string Cut(const std::u16string& text, std::size_t most) {
    if (text.size() <= most) return text;
    std::size_t head = most / 2;
    std::size_t tail = text.size() - (most - 1 - head);
    if (IsSecondHalf(text[head])) --head;
    if (IsSecondHalf(text[tail])) ++tail;
    return text.substr(0, head) + u'\u2026' + text.substr(tail);
}

/// Drive or share, and as many of the innermost folders as there is room for.
std::u16string CutFolder(const std::u16string& folder) {
    if (folder.size() <= kLongestFolder) return folder;
    std::size_t root = 3;
    if (IsSeparator(folder[0])) {
        const std::size_t share = folder.find_first_of(kSeparators, 2);
        const std::size_t end = share == folder.npos ? share : folder.find_first_of(kSeparators, share + 1);
        root = end == folder.npos ? folder.size() : end + 1;
    }
    for (std::size_t at = folder.find_first_of(kSeparators, root); at != folder.npos;
         at = folder.find_first_of(kSeparators, at + 1)) {
        if (root + 1 + folder.size() - at <= kLongestFolder)
            return folder.substr(0, root) + u'\u2026' + folder.substr(at);
    }
    return Cut(folder, kLongestFolder);
}

}  // namespace

RecentRecordings::RecentRecordings(const std::vector<std::u16string>& paths) {
    // The first ones are the latest.
    for (auto path = paths.rbegin(); path != paths.rend(); ++path) Add(*path);
}

void RecentRecordings::Add(const std::u16string& path) {
    if (!IsUsable(path)) return;
    std::erase_if(m_paths, [lower = LowerCase(path)](const auto& other) { return LowerCase(other) == lower; });
    m_paths.insert(m_paths.begin(), path);
    if (m_paths.size() > kMost) m_paths.resize(kMost);
}

std::u16string RecentCaption(std::size_t index, const std::u16string& path) {
    const auto number = static_cast<std::int64_t>(index + 1);
    std::u16string folder = FolderOf(path);
    if (folder.size() > 3) folder.pop_back();
    // The tenth has the key 0; for the others there are no digits left.
    const std::u16string key = number < 10 ? u'&' + Decimal(number) : number == 10 ? u"1&0" : Decimal(number);
    return key + u"  " + EscapedCaption(Cut(FileNameOf(path), kLongestName)) + u'\t' +
           EscapedCaption(CutFolder(folder));
}

}  // namespace quillon
