#include "app/HelpFile.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

namespace quillon {
namespace {

constexpr const char16_t* kRussian = u"C:\\Q\\Kelvo.chm";
constexpr const char16_t* kEnglish = u"C:\\Q\\KelvoEN.chm";

class FakeLookup final : public DirectoryLookup {
  public:
    explicit FakeLookup(std::set<std::u16string> files, std::u16string match = {})
        : m_files(std::move(files)), m_match(std::move(match)) {}
    bool Exists(const std::u16string& path) override {
        if (failing.contains(path)) throw std::runtime_error("device not ready");
        return m_files.contains(path);
    }
    std::u16string FirstMatch(const std::u16string& pattern) override {
        if (failing.contains(pattern)) throw std::runtime_error("device not ready");
        return pattern == u"C:\\Q\\Kelvo*.chm" ? m_match : std::u16string();
    }
    std::set<std::u16string> failing;

  private:
    std::set<std::u16string> m_files;
    std::u16string m_match;
};

/// The chosen file and what became of the user's choice.
using Choice = std::pair<std::u16string, std::int16_t>;

Choice Choose(FakeLookup lookup, std::int16_t helpLanguage, std::u16string_view code) {
    const std::u16string file = ChooseHelpFile(lookup, u"C:\\Q", helpLanguage, code);
    return {file, helpLanguage};
}

TEST(HelpFile, TheUsersChoiceDecidesBetweenTwoFilesAndIsKept) {
    const FakeLookup both({kRussian, kEnglish});
    EXPECT_EQ(Choose(both, 1, u"EN"), Choice(kRussian, 1));
    EXPECT_EQ(Choose(both, 2, u"RU"), Choice(kEnglish, 2));
    EXPECT_EQ(Choose(both, 0, u"EN"), Choice(kEnglish, 0));
    EXPECT_EQ(Choose(both, 0, u"RU"), Choice(kRussian, 0));
    EXPECT_EQ(Choose(both, -3, u"EN"), Choice(kEnglish, -3));
    EXPECT_EQ(Choose(both, 7, u""), Choice(kRussian, 7));
}

TEST(HelpFile, ASingleFileWinsAndClearsTheChoice) {
    EXPECT_EQ(Choose(FakeLookup({kEnglish}), 1, u"RU"), Choice(kEnglish, 0));
    EXPECT_EQ(Choose(FakeLookup({kRussian}, u"KelvoDE.chm"), 2, u"EN"), Choice(kRussian, 0));
    EXPECT_EQ(Choose(FakeLookup({}, u"KelvoDE.chm"), 2, u"EN"), Choice(u"C:\\Q\\KelvoDE.chm", 0));
    EXPECT_EQ(Choose(FakeLookup({}), 2, u"EN"), Choice(u"", 0));
}

TEST(HelpFile, AFailingLookUpFindsNothingAndTheOthersGoOn) {
    FakeLookup lookup({kRussian, kEnglish}, u"KelvoDE.chm");
    lookup.failing = {kRussian};
    EXPECT_EQ(Choose(lookup, 1, u"RU"), Choice(kEnglish, 0));
    lookup.failing.insert(kEnglish);
    EXPECT_EQ(Choose(lookup, 1, u"RU"), Choice(u"C:\\Q\\KelvoDE.chm", 0));
    lookup.failing.insert(u"C:\\Q\\Kelvo*.chm");
    EXPECT_EQ(Choose(lookup, 1, u"RU"), Choice(u"", 0));
}

}  // namespace
}  // namespace quillon
