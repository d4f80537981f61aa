#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using namespace ::quillon::testing;

using BrowserTest = MainWindowTest;

TEST_F(BrowserTest, FoldersOfOpenedRecordingsAreRememberedWhileATypeIsListed) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    Start();
    const auto& folders = m_global.settings.pathList.Folders();
    ASSERT_EQ(folders.size(), 1U);
    const std::wstring other = Wide(m_folder.Path()) + L"\\Другая папка";
    CreateDirectoryW(other.c_str(), nullptr);
    static_cast<void>(m_folder.Write(u"Другая папка/b.bin", SawRecording()));
    m_form->OpenPath(other);
    EXPECT_EQ(m_global.document->File().fileName, u"") << "another folder closes the recording";
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"b.bin"));
    ClickLine(lstFile, 0);
    ASSERT_EQ(folders.size(), 2U);
    // Choosing a remembered folder leads there.
    Command(mnuPathList);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin"));
    // A dropped file opens through the list.
    m_form->OpenPath(other + L"\\b.bin");
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"b.bin - ["));
    EXPECT_EQ(folders.size(), 2U);
}

TEST_F(BrowserTest, LettersLeadToFilesAndFoldersWhileTheirListHasTheKeyboard) {
    for (const char16_t* folder : {u"below", u"Архив"}) std::filesystem::create_directory(m_folder.File(folder));
    for (const char16_t* name : {u"alpha.bin", u"beta.bin", u"bravo.bin", u"below/x.bin", u"Архив/x.bin"})
        static_cast<void>(m_folder.Write(name, SawRecording()));
    Start();
    const auto type = [&](int list, std::wstring_view letters) {
        DWORD time = 5000;
        for (const wchar_t letter : letters) {
            const MSG message{Control(list), WM_CHAR, letter, 0, time += 100, {}};
            EXPECT_TRUE(m_form->PreTranslate(message));
        }
        const LRESULT line = SendMessageW(Control(list), LB_GETCURSEL, 0, 0);
        return Lines(list).at(static_cast<std::size_t>(line));
    };
    Command(mnuFocus + 2);
    EXPECT_EQ(type(lstFile, L"BR"), L"bravo.bin");
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"bravo.bin - ["));
    Command(mnuFocus + 0);
    EXPECT_THAT(type(lstDir, L"bel"), ::testing::EndsWith(L" below"));
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"bravo.bin - [")) << "folders are opened by Enter";
    Command(mnuOpenFolder);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"x.bin"));
    const MSG graph{Control(pbGraph), WM_CHAR, L'b', 0, 0, {}};
    EXPECT_FALSE(m_form->PreTranslate(graph));
}

TEST_F(BrowserTest, TheTypeBoxLimitsTheList) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    static_cast<void>(m_folder.Write(u"b.wav", FileBytes().Text("RIFF")));
    Start();
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin", L"b.wav"));
    const HWND types = Control(cboFileType);
    const auto choose = [&](WPARAM type) {
        SendMessageW(types, CB_SETCURSEL, type, 0);
        SendMessageW(m_form->Window(), WM_COMMAND, MAKEWPARAM(cboFileType, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(types));
        Pump();
    };
    choose(1);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin"));
    EXPECT_EQ(ItemCount(), 2) << "the shown file still matches and stays open";
    choose(2);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"b.wav"));
    EXPECT_EQ(ItemCount(), 0);
    EXPECT_EQ(SendMessageW(types, CB_GETCOUNT, 0, 0), 13);
}

TEST_F(BrowserTest, ChangesByOthersAppearAndARecordingThatIsGoneIsClosed) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    Start();
    static_cast<void>(m_folder.Write(u"Новый.bin", SawRecording()));
    EXPECT_TRUE(WaitFor([&] { return Lines(lstFile).size() == 2; }));
    EXPECT_EQ(ItemCount(), 2) << "the open recording stays open";
    EXPECT_EQ(SendMessageW(Control(lstFile), LB_GETCURSEL, 0, 0), 0);
    // Moved away, as into the recycle bin; a file that is only deleted keeps its name until everybody has closed it.
    std::filesystem::create_directory(m_folder.File(u"bin"));
    std::filesystem::rename(m_folder.File(u"a.bin"), m_folder.File(u"bin/a.bin"));
    EXPECT_TRUE(WaitFor([&] { return Lines(lstFile).size() == 1; }));
    EXPECT_EQ(ItemCount(), 0);
    EXPECT_THAT(Status(), HasSubstr(L"a.bin: "));
    EXPECT_EQ(Caption(), L"Quillon");
}

TEST_F(BrowserTest, ARecordingThatChangesIsLoadedAgainAtTheSamePlace) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(20000)));
    Start();
    Command(mnuScaleX + 1);
    Command(mnuScaleY + 7);
    ScrollTo(3000);
    ClickCheckBox(1);
    m_global.view->Select(7000, 19000);
    const auto shift = m_global.view->BaseLineShift();
    const auto isAt = [&](std::int32_t samples) {
        return m_global.document->Block().sampleCount == samples && m_global.view->Axis().ZoomIndex() == 1 &&
               m_global.view->Axis().FirstColumn() == 3000 && m_global.view->ScaleY() == 7 &&
               m_global.view->BaseLineShift() == shift && !m_global.document->Slots()[1].shown;
    };
    // Under the same name, which no folder watch tells; only what is not growing is worth a word.
    for (const std::int32_t samples : {30000, 25000}) {
        EXPECT_EQ(Status(), L"");
        static_cast<void>(m_folder.Write(u"a.bin", SawRecording(samples)));
        EXPECT_TRUE(WaitFor([&] { return m_global.document->Block().sampleCount == samples; }));
        EXPECT_TRUE(isAt(samples));
        EXPECT_EQ(m_global.view->Selected().Last(), 19000);
    }
    EXPECT_THAT(Status(), ::testing::StartsWith(L"a.bin: "));
}

TEST_F(BrowserTest, AFolderThatWasAwayIsListedAndWatchedAgain) {
    const std::filesystem::path stick = m_folder.File(u"stick");
    std::filesystem::create_directory(stick);
    static_cast<void>(m_folder.Write(u"stick/a.bin", SawRecording()));
    Start(stick.wstring());
    std::filesystem::rename(stick, m_folder.File(u"away"));
    std::filesystem::create_directory(stick);
    static_cast<void>(m_folder.Write(u"stick/b.bin", SawRecording()));
    Command(mnuPathList);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"b.bin"));
    static_cast<void>(m_folder.Write(u"stick/c.bin", SawRecording()));
    EXPECT_TRUE(WaitFor([&] { return Lines(lstFile).size() == 2; }));
}

TEST_F(BrowserTest, NamesThatLookAlikeAreTwoFiles) {
    const std::wstring composed = L"caf\u00E9.bin";
    const std::wstring decomposed = L"cafe\u0301.bin";
    static_cast<void>(m_folder.Write(Narrow16(composed), SawRecording()));
    static_cast<void>(m_folder.Write(Narrow16(decomposed), SawRecording(300)));
    Start();
    for (const std::wstring& name : {composed, decomposed}) {
        m_form->OpenPath(Wide(m_folder.Path()) + L'\\' + name);
        SendMessageW(m_form->Window(), WM_COMMAND, MAKEWPARAM(cboFileType, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(Control(cboFileType)));
        EXPECT_EQ(m_global.document->Block().sampleCount, name == composed ? 2000 : 300);
    }
}

TEST_F(BrowserTest, DeletesAndRenames) {
    for (const char16_t* name : {u"a.bin", u"b.bin", u"c.bin"}) static_cast<void>(m_folder.Write(name, SawRecording()));
    Start();
    ClickLine(lstFile, 1);
    CommandWith(mnuFileOperation, [this](HWND dialog) {
        static_cast<void>(m_folder.Write(u"aa.bin", SawRecording()));
        PostMessageW(dialog, WM_COMMAND, IDNO, 0);
    });
    EXPECT_EQ(Lines(lstFile).size(), 4U) << "what came while it was asked is listed";
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"b.bin")) << "declined: the file is open again";
    CommandPressing(mnuFileOperation, IDYES);
    EXPECT_FALSE(Exists(u"b.bin"));
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin", L"aa.bin", L"c.bin"));
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"c.bin")) << "the same position is selected";

    const auto rename = [&](const wchar_t* name) {
        CommandWith(mnuFileOperation + 1, [name](HWND dialog) {
            SetDlgItemTextW(dialog, 101, name);
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        });
    };
    rename(L"Переименован.bin");
    EXPECT_TRUE(Exists(u"Переименован.bin"));
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"Переименован.bin"));
    rename(L"a.bin");
    EXPECT_THAT(Status(), HasSubstr(L"not renamed")) << "another file has that name";
    EXPECT_EQ(ItemCount(), 2) << "and it is open again";
    ScrollTo(300);
    rename(L"a/b.bin");
    EXPECT_EQ(m_global.view->Axis().FirstColumn(), 300) << "not even closed for a name that no file can have";
}

TEST_F(BrowserTest, CommandsConcernTheFileThatWasChosen) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    std::filesystem::create_directory(m_folder.File(u"sub"));
    static_cast<void>(m_folder.Write(u"sub/a.bin", SawRecording()));
    static_cast<void>(m_folder.Write(u"b.dat", SawRecording()));
    Start();
    m_form->OpenPath(m_folder.File(u"sub").wstring() + L"\\a.bin");
    m_form->OpenPath(m_folder.File(u"a.bin").wstring());
    // While the new name is asked for, the other folder is chosen: it takes effect before the file is renamed.
    CommandWith(mnuFileOperation + 1, [this](HWND dialog) {
        SetDlgItemTextW(dialog, 101, L"z.bin");
        PostMessageW(m_form->Window(), WM_COMMAND, mnuPathList + 1, 0);
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    EXPECT_TRUE(Exists(u"sub/a.bin"));
    EXPECT_NE(Exists(u"a.bin"), Exists(u"z.bin"));
    // A file that the list leaves out is open, so no line stands for delete and rename.
    m_form->OpenPath(m_folder.File(u"b.dat").wstring());
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"b.dat - ["));
    EXPECT_FALSE(IsEnabled(mnuFileOperation, m_form->State()));
    // A folder that is not there opens nothing of another one.
    m_form->OpenPath(m_folder.File(u"no such").wstring() + L"\\z.bin");
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"b.dat - ["));
    EXPECT_THAT(Status(), HasSubstr(L"no such"));
}

TEST_F(BrowserTest, AWindowThatIsToCloseWhileADialogAsksClosesAfterIt) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    Start();
    CommandWith(mnuFileOperation, [this](HWND dialog) {
        SendMessageW(m_form->Window(), WM_CLOSE, 0, 0);
        EXPECT_TRUE(IsWindow(m_form->Window()));
        PostMessageW(dialog, WM_COMMAND, IDNO, 0);
    });
    EXPECT_TRUE(Exists(u"a.bin"));
    EXPECT_EQ(m_form->Window(), nullptr);
}

}  // namespace
}  // namespace quillon
