// What the program opens when it starts.
#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"
#include "base/Text.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace ::quillon::testing;

class StartPathTest : public MainWindowTest {
  protected:
    StartPathTest() {
        static_cast<void>(m_folder.Write(u"kept.bin", SawRecording()));
        std::filesystem::create_directory(m_folder.File(u"Другая & 100%"));
        for (const char16_t* name : {u"a.bin", u"b 'c'.bin", u"d.dat"})
            static_cast<void>(m_folder.Write(u"Другая & 100%/" + std::u16string(name), SawRecording(3000)));
        static_cast<void>(m_folder.Write(u"Другая & 100%/no recording.bin", "no recording"));
    }
    /// A start with this path, as a user or the shell writes it.
    void StartAt(const std::wstring& argument) {
        m_global = {};
        Create(Wide(m_folder.Path()), Wide(PathOfArguments(argument)));
        Show();
    }
    [[nodiscard]] std::wstring Other() const { return m_folder.File(u"Другая & 100%").wstring(); }
    [[nodiscard]] LRESULT Selected() const { return SendMessageW(Control(lstFile), LB_GETCURSEL, 0, 0); }
};

TEST_F(StartPathTest, AFileIsOpenedInItsFolderAndAFolderAtItsFirstRecording) {
    struct Case {
        std::wstring argument;
        std::wstring opened;
        int selected;
    };
    for (const Case& each :
         {Case{L"\"" + Other() + L"\\b 'c'.bin\"", L"b 'c'.bin", 1}, Case{Other() + L"\\b 'c'.bin ", L"b 'c'.bin", 1},
          Case{L"\"\\\\?\\" + Other() + L"\\b 'c'.bin\"", L"b 'c'.bin", 1},
          Case{L"\"" + Other() + L"\\d.dat\"", L"d.dat", -1}, Case{L"\"" + Other() + L"\\\"", L"a.bin", 0}}) {
        SCOPED_TRACE(Utf8(Narrow16(each.argument)));
        StartAt(each.argument);
        EXPECT_THAT(Caption(), StartsWith(each.opened + L" - ["));
        EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin", L"b 'c'.bin", L"no recording.bin"));
        EXPECT_EQ(Selected(), each.selected);
        EXPECT_EQ(TabCtrl_GetCurSel(Control(tabPath)), 1);
        TearDown();
        EXPECT_TRUE(m_global.settings.filesPath.ends_with(u"Другая & 100%")) << "remembered as one chosen";
    }
    StartAt(Other() + L"\\no recording.bin");
    EXPECT_EQ(Selected(), 2);
    EXPECT_THAT(Status(), StartsWith(L"no recording.bin: "));
}

TEST_F(StartPathTest, WhatIsNotToBeHadIsToldAndNothingElseIsOpened) {
    for (const auto& [argument, told] :
         {std::pair<std::wstring, std::wstring>{L"\"" + Other() + L"\\gone.bin\"", L"gone.bin: "},
          {Other() + L"\\gone\\b.bin", L"gone\\b.bin: "},
          {L"NUL", L"NUL: "},
          {L"\\\\.\\COM1", L"\\\\.\\COM1: "}}) {
        SCOPED_TRACE(Utf8(Narrow16(argument)));
        StartAt(argument);
        EXPECT_THAT(Status(), HasSubstr(told));
        EXPECT_THAT(Lines(lstFile), ElementsAre(L"kept.bin")) << "the remembered folder";
        EXPECT_EQ(Selected(), -1);
        EXPECT_EQ(Caption(), L"Quillon");
        ClickLine(lstFile, 0);
        EXPECT_THAT(Status(), ::testing::Not(HasSubstr(told)));
        EXPECT_EQ(ItemCount(), 2);
        TearDown();
        EXPECT_EQ(m_global.settings.filesPath, m_folder.Path());
    }
}

TEST_F(StartPathTest, WithoutARememberedFolderTheDocumentsAreShownOrElseTheProfile) {
    {
        const DocumentsScope documents(Wide(m_folder.Path()));
        Create({});
        Show();
        EXPECT_THAT(Caption(), StartsWith(L"kept.bin"));
        TearDown();
        EXPECT_EQ(m_global.settings.filesPath, m_folder.Path());
    }
    const DocumentsScope documents(Wide(m_folder.Path()) + L"\\gone");
    m_global = {};
    Create({});
    Show();
    TearDown();
    wchar_t profile[MAX_PATH] = {};
    GetEnvironmentVariableW(L"USERPROFILE", profile, MAX_PATH);
    EXPECT_EQ(m_global.settings.filesPath, Narrow16(profile));
}

TEST_F(StartPathTest, IsMadeAbsoluteBeforeTheProgramLeavesTheFolderItWasStartedIn) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Other());
    EXPECT_EQ(Wide(PathOfArguments(L"a.bin")), Other() + L"\\a.bin");
    EXPECT_EQ(Wide(PathOfArguments(L"\"../kept.bin\" a.bin")), m_folder.File(u"kept.bin").wstring());
    EXPECT_EQ(PathOfArguments(L" "), u"");
    LeaveStartFolder();
    EXPECT_NE(std::filesystem::current_path(), std::filesystem::path(Other()));
    std::filesystem::current_path(before);
}

}  // namespace
}  // namespace quillon
