#include "app/HelpFile.h"

#include <exception>

namespace quillon {

namespace {

/// The answer of a look-up, or `nothing` when it fails.
template <typename Answer, typename Ask>
Answer Ignoring(Answer nothing, Ask ask) {
    try {
        return ask();
    } catch (const std::exception&) {
        return nothing;
    }
}

}  // namespace

std::u16string ChooseHelpFile(DirectoryLookup& lookup, const std::u16string& programFolder, std::int16_t& helpLanguage,
                              std::u16string_view languageCode) {
    const std::u16string russian = programFolder + u"\\Kelvo.chm";
    const std::u16string english = programFolder + u"\\KelvoEN.chm";
    const bool hasRussian = Ignoring(false, [&] { return lookup.Exists(russian); });
    const bool hasEnglish = Ignoring(false, [&] { return lookup.Exists(english); });
    if (hasRussian && hasEnglish) {
        const bool wantsEnglish = helpLanguage == 2 || (helpLanguage != 1 && languageCode == u"EN");
        return wantsEnglish ? english : russian;
    }
    helpLanguage = 0;
    if (hasRussian) return russian;
    if (hasEnglish) return english;
    const std::u16string other =
        Ignoring(std::u16string(), [&] { return lookup.FirstMatch(programFolder + u"\\Kelvo*.chm"); });
    return other.empty() ? other : programFolder + u'\\' + other;
}

}  // namespace quillon
