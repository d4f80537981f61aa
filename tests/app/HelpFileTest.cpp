#include "app/HelpFile.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

namespace quillon {
namespace {

constexpr const char16_t* kRussian = u"C:\\Q\\Kelvo.chm";
constexpr const char16_t* kEnglish = u"C:\\Q\\KelvoEN.chm";
constexpr const char16_t* kPattern = u"C:\\Q\\Kelvo*.chm";

/// A folder with some of the files; a look-up of what is in `failing` throws.
class FakeLookup final : public DirectoryLookup {
  public:
    bool Exists(const std::u16string& path) override { return Find(path); }
    std::u16string FirstMatch(const std::u16string& pattern) override {
        return Find(pattern) ? u"KelvoDE.chm" : std::u16string();
    }
    std::set<std::u16string> files;
    std::set<std::u16string> failing;

  private:
    bool Find(const std::u16string& name) const {
        if (failing.contains(name)) throw std::runtime_error("device not ready");
        return files.contains(name);
    }
};

/// The chosen file and what became of the user's choice.
using Choice = std::pair<std::u16string, std::int16_t>;

TEST(HelpFile, TheUsersChoiceDecidesBetweenTwoFilesOnly) {
    FakeLookup lookup;
    const auto choose = [&](std::int16_t choice, std::u16string_view language) {
        const std::u16string file = ChooseHelpFile(lookup, u"C:\\Q", choice, language);
        return Choice(file, choice);
    };
    lookup.files = {kRussian, kEnglish, kPattern};
    EXPECT_EQ(choose(1, u"EN"), Choice(kRussian, 1));
    EXPECT_EQ(choose(2, u"RU"), Choice(kEnglish, 2));
    EXPECT_EQ(choose(-3, u"EN"), Choice(kEnglish, -3));
    EXPECT_EQ(choose(7, u""), Choice(kRussian, 7));
    lookup.failing = {kRussian};
    EXPECT_EQ(choose(1, u"RU"), Choice(kEnglish, 0)) << "a look-up that fails finds nothing";
    lookup.failing = {kRussian, kEnglish};
    EXPECT_EQ(choose(1, u"RU"), Choice(u"C:\\Q\\KelvoDE.chm", 0));
    lookup.failing.insert(kPattern);
    EXPECT_EQ(choose(1, u"RU"), Choice(u"", 0));
    lookup.failing.clear();
    lookup.files = {kRussian, kPattern};
    EXPECT_EQ(choose(2, u"EN"), Choice(kRussian, 0));
    lookup.files = {};
    EXPECT_EQ(choose(2, u"EN"), Choice(u"", 0));
}

}  // namespace
}  // namespace quillon
