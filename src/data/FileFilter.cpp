#include "data/FileFilter.h"

#include "base/Text.h"

namespace quillon {

namespace {

/// Both sides are in lower case. Linear but for the last star: a mismatch goes back to it and lets it take one more.
bool MatchesPattern(std::u16string_view name, std::u16string_view pattern) {
    std::size_t at = 0;
    std::size_t next = 0;
    std::size_t star = std::u16string_view::npos;
    std::size_t starAt = 0;
    while (at < name.size()) {
        if (next < pattern.size() && pattern[next] == u'*') {
            star = next++;
            starAt = at;
        } else if (next < pattern.size() && (pattern[next] == u'?' || pattern[next] == name[at])) {
            ++next;
            ++at;
        } else if (star != std::u16string_view::npos) {
            next = star + 1;
            at = ++starAt;
        } else {
            return false;
        }
    }
    while (next < pattern.size() && pattern[next] == u'*') ++next;
    return next == pattern.size();
}

}  // namespace

bool MatchesMask(std::u16string_view name, std::u16string_view mask) {
    const std::u16string lowerName = LowerCase(name);
    const std::u16string lowerMask = LowerCase(mask);
    std::u16string_view rest = lowerMask;
    while (!rest.empty()) {
        const std::size_t end = rest.find(u';');
        const std::u16string_view pattern = rest.substr(0, end);
        if (pattern == u"*.*" || (!pattern.empty() && MatchesPattern(lowerName, pattern))) return true;
        rest = end == std::u16string_view::npos ? std::u16string_view() : rest.substr(end + 1);
    }
    return false;
}

std::u16string FileTypeLine(const RecordingLibrary& library, std::int32_t type) {
    const std::u16string name = library.FileTypeName(type);
    return type == 0 ? name : name + u" (" + library.FileTypeMask(type) + u')';
}

std::u16string FilterOfTypes(const RecordingLibrary& library, const std::u16string& anyFile) {
    std::u16string filter;
    for (std::int32_t type = 0; type <= library.FileTypeCount(); ++type)
        filter += FileTypeLine(library, type) + u'|' + library.FileTypeMask(type) + u'|';
    return filter + anyFile + u"|*.*";
}

}  // namespace quillon
