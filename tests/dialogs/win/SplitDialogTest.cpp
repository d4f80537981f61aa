#include "dialogs/win/dlgSplit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "RecordingWriters.h"
#include "app/KV_Resources.h"
#include "app/win/LongCommand.h"
#include "app/win/MainWindowFixture.h"
#include "base/Text.h"
#include "base/win/SystemPath.h"
#include "dialogs/SplitTemplate.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "support/FakeRecording.h"

namespace quillon {

using namespace split_controls;
namespace {

using namespace ::quillon::testing;
namespace fs = std::filesystem;

class Services final : public FakeServices {
  public:
    Language language = Language::English;
    std::u16string Text(int id) const override { return ResourceText(language, id); }
};

/// The real dialog over a recording of 1000 samples at 100 Hz. Scripts run in another thread and close it at their end.
class SplitDialog : public ::testing::Test {
  protected:
    void SetUp() override { Open(u"Ночь.bin"); }

    void Open(const std::u16string& name, std::uint32_t count = 1000) {
        std::vector<std::int16_t> codes(count, 7);
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(100.0F, "", {{"A", "mV", 1.0F, 0.0F}}, count)).Codes(codes);
        std::ofstream(m_folder.File(name), std::ios::binary) << bytes.Get();
        m_library = MakeRecordingLibrary(Language::English);
        m_path = fs::path(m_folder.Path()).make_preferred() / name;
        ASSERT_TRUE(m_library->OpenRecording(m_path.u16string(), m_recording));
        m_recording->GetBlock(1)->Prepare();
        m_pieces = m_path.parent_path() / m_path.stem();
    }

    void Show(const std::function<void()>& script) {
        KVExport exporter(m_services, {m_makeFile});
        const DialogAnswer answer([&](HWND dialog) {
            m_dialog = dialog;
            script();
            PostMessageW(dialog, WM_COMMAND, cmdCancel, 0);
        });
        LongCommand command;
        command.SetWindow(GetDesktopWindow());
        const auto run = [&](const std::function<void()>& work) {
            command.RunPart(work);
            return !command.IsCloseAsked();
        };
        ShowSplitDialog(
            nullptr,
            {m_recording->GetBlock(1), m_path.u16string(), m_settings, exporter, m_services, u'.', {}, run, [&] {
                 return command.StayAlive();
             }});
    }

    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(m_dialog, id); }
    void Click(int id) const { SendMessageW(Control(id), BM_CLICK, 0, 0); }
    void Type(int id, const wchar_t* text) const {
        const HWND edit = GetWindow(Control(id), GW_CHILD);
        SendMessageW(edit, EM_SETSEL, 0, -1);
        SendPointer(edit, EM_REPLACESEL, FALSE, text);
    }
    [[nodiscard]] std::string Label(int id) const { return Utf8(Narrow16(WindowText(Control(id)))); }
    [[nodiscard]] bool StatusHolds(const std::string& text) const {
        return Label(lblStatus).find(text) != std::string::npos;
    }
    /// Presses cmdSplit and, where the dialog asks, a button of the message box.
    void Press(WORD answer) const {
        PostMessageW(Control(cmdSplit), BM_CLICK, 0, 0);
        if (answer == 0) return;
        HWND box = nullptr;
        ASSERT_TRUE(WaitUntil([&] { return !IsWindowEnabled(m_dialog); }));
        ASSERT_TRUE(
            WaitUntil([&] { return (box = GetLastActivePopup(m_dialog)) != m_dialog && IsWindowVisible(box); }));
        PostMessageW(box, WM_COMMAND, answer, 0);
    }
    /// The same, and waits for that status.
    [[nodiscard]] bool Run(const std::string& status, WORD answer = 0) const {
        Press(answer);
        const bool shown = WaitUntil(
            [&] { return IsWindowEnabled(m_dialog) && IsWindowEnabled(Control(cmdSplit)) && StatusHolds(status); });
        EXPECT_TRUE(shown) << status << " / " << Label(lblStatus);
        return shown;
    }
    void BySamples(const wchar_t* size, const wchar_t* step) const {
        Click(optSplit + 1);
        Type(cboSize + 1, size);
        Type(cboStep + 1, step);
    }

    void Make(const std::u16string& name) const {
        fs::create_directories(m_pieces);
        std::ofstream(m_pieces / name) << "foreign";
    }
    [[nodiscard]] bool IsForeign(const std::u16string& name) const {
        return fs::exists(m_pieces / name) && fs::file_size(m_pieces / name) == 7;
    }
    [[nodiscard]] std::vector<std::u16string> Files() const {
        std::vector<std::u16string> names;
        if (!fs::is_directory(m_pieces)) return names;
        for (const auto& entry : fs::directory_iterator(m_pieces)) names.push_back(entry.path().filename().u16string());
        std::sort(names.begin(), names.end());
        return names;
    }
    using Names = std::vector<std::u16string>;

    TemporaryFolder m_folder;
    fs::path m_path;
    fs::path m_pieces;
    std::shared_ptr<RecordingLibrary> m_library;
    std::shared_ptr<Recording> m_recording;
    SplitSettings m_settings;
    Services m_services;
    OutputFileFactory m_makeFile = MakeOutputFile;
    HWND m_dialog = nullptr;
};

TEST_F(SplitDialog, WritesThePiecesAndKeepsTheChoices) {
    m_settings.timeSize = 1.0F;
    Show([&] {
        EXPECT_EQ(Label(lblStatus), "Files: \"#.bin\"");
        EXPECT_EQ(Label(lblPieces), "Pieces: 10") << "of one second each";
        EXPECT_FALSE(IsWindowEnabled(Control(cboSize + 1)));
        BySamples(L"300", L"200");
        Click(chkBaseName);
        Click(optFileIndex + 1);
        EXPECT_FALSE(IsWindowEnabled(Control(cboSize)));
        EXPECT_EQ(Label(lblStatus), "Files: \"Ночь_###-###.bin\"");
        EXPECT_EQ(Label(lblPieces), "Pieces: 4");
        Type(cboSize, L"abc");
        EXPECT_TRUE(Run("Files written: 4"));
        EXPECT_EQ(Files(),
                  (Names{u"Ночь_0000-0299.bin", u"Ночь_0200-0499.bin", u"Ночь_0400-0699.bin", u"Ночь_0600-0899.bin"}));
        EXPECT_EQ(m_settings.samplesSize, 300);
        Type(cboSize + 1, L"50");
    });
    EXPECT_EQ(m_settings.type, 1);
    EXPECT_EQ(m_settings.samplesSize, 300) << "what no run was started with is not kept";
    EXPECT_EQ(m_settings.samplesStep, 200);
    EXPECT_EQ(m_settings.fileIndex, 1);
    EXPECT_NE(m_settings.baseName, 0);
    EXPECT_EQ(m_settings.timeSize, 1.0F) << "kept where the entry is no number";
}

TEST_F(SplitDialog, ChecksEverythingBeforeAnythingIsDeleted) {
    Make(u"a.txt");
    Make(u"b.txt");
    Show([&] {
        Click(chkDelFiles);
        EXPECT_TRUE(StatusHolds("Files to be deleted: 2"));
        BySamples(L"100", L"abc");
        EXPECT_TRUE(Run("Step: \"abc\" is not a positive"));
        EXPECT_EQ(GetParent(FocusOf(m_dialog)), Control(cboStep + 1));
        BySamples(L"500", L"500");
        SetFileAttributesW((m_pieces / u"b.txt").c_str(), FILE_ATTRIBUTE_READONLY);
        EXPECT_TRUE(Run("\"b.txt\" cannot be deleted"));
        SetFileAttributesW((m_pieces / u"b.txt").c_str(), FILE_ATTRIBUTE_NORMAL);
        const HANDLE open = CreateFileW((m_pieces / u"b.txt").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        EXPECT_TRUE(Run("\"b.txt\" cannot be deleted"));
        CloseHandle(open);
        fs::create_hard_link(m_path, m_pieces / u"link.dat");
        EXPECT_TRUE(Run("holds the open recording"));
        Click(chkDelFiles);
        EXPECT_TRUE(Run("holds the open recording"));
        EXPECT_EQ(Files(), (Names{u"a.txt", u"b.txt", u"link.dat"}));
    });
    EXPECT_EQ(m_settings.type, 0) << "nothing was run";
    EXPECT_TRUE(m_services.messages.empty());
}

TEST_F(SplitDialog, DeletesTheFilesThatItHasCounted) {
    Make(u"a.txt");
    Make(u"1.bin");
    fs::create_directories(m_pieces / u"folder.x");
    Show([&] {
        BySamples(L"500", L"500");
        EXPECT_TRUE(StatusHolds("Existing files to be replaced: 1"));
        Click(chkDelFiles);
        EXPECT_TRUE(StatusHolds("Files to be deleted: 2"));
        Make(u"Ā.txt");
        EXPECT_TRUE(Run("Files to be deleted: 3"));
        EXPECT_TRUE(IsForeign(u"a.txt"));
        EXPECT_TRUE(Run("Files written: 2"));
        EXPECT_EQ(Files(), (Names{u"1.bin", u"2.bin", u"folder.x"}));
        EXPECT_FALSE(IsForeign(u"1.bin"));
        // What the run wrote is not deleted by the next one unannounced.
        EXPECT_TRUE(Run("Files to be deleted: 2"));
    });
}

TEST_F(SplitDialog, AsksBeforeItWritesThousandsOfFilesOrReplacesOne) {
    Open(u"long.bin", 10001);
    Make(u"2.bin");
    Make(u"notes.txt");
    Show([&] {
        BySamples(L"1", L"1");
        EXPECT_TRUE(Run("Files: ", IDNO));
        BySamples(L"5000", L"5000");
        EXPECT_TRUE(Run("Existing files to be replaced: 1", IDNO));
        EXPECT_EQ(Files(), (Names{u"2.bin", u"notes.txt"}));
        EXPECT_TRUE(IsForeign(u"2.bin"));
        EXPECT_TRUE(Run("Files written: 2", IDYES));
    });
    EXPECT_FALSE(IsForeign(u"2.bin"));
    EXPECT_TRUE(IsForeign(u"notes.txt"));
}

TEST_F(SplitDialog, TakesLongAndForeignNames) {
    Open(std::u16string(110, u'Ж') + u".x & y.bin");
    Make(u"x.txt");
    Show([&] {
        BySamples(L"500", L"500");
        Click(chkBaseName);
        Click(chkDelFiles);
        EXPECT_TRUE(Run("Files written: 2"));
    });
    const std::u16string base = m_path.stem().u16string() + u'_';
    // Longer than what the library behind std::filesystem lists.
    EXPECT_GT(m_pieces.wstring().size() + base.size(), 260U);
    for (const char16_t* number : {u"1.bin", u"2.bin"}) {
        const std::wstring path = L"\\\\?\\" + (m_pieces / (base + number)).wstring();
        EXPECT_NE(GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES) << Utf8(number);
        EXPECT_NE(DeleteFileW(path.c_str()), FALSE);
    }
    EXPECT_FALSE(fs::exists(m_pieces / u"x.txt"));
    // Wine takes long paths in any form, Windows in these only.
    const std::u16string deep(260, u'd');
    const std::wstring wide = Wide(deep);
    EXPECT_EQ(SystemPath(u"C:\\a/x\\../" + deep), L"\\\\?\\C:\\a\\" + wide);
    EXPECT_EQ(SystemPath(u"\\\\server\\share\\" + deep), L"\\\\?\\UNC\\server\\share\\" + wide);
    EXPECT_EQ(SystemPath(u"\\\\?\\C:\\" + deep), L"\\\\?\\C:\\" + wide);
    EXPECT_EQ(SystemPath(u"C:/a"), L"C:/a");
}

TEST_F(SplitDialog, EscAndCloseStopTheRunAndOtherInputDoesNothing) {
    int files = 0;
    std::function<void()> disturb;
    m_makeFile = [&] {
        if (++files == 3) {
            disturb();
            Sleep(50);  // so that messages are looked for within this piece
        }
        return MakeOutputFile();
    };
    disturb = [&] {
        EXPECT_FALSE(IsWindowEnabled(Control(cmdCancel)));
        EXPECT_EQ(FocusOf(m_dialog), m_dialog) << "a disabled control gets no Esc";
        EXPECT_TRUE(StatusHolds("File 3 of 10 (20%): \"03.bin\""));
        for (const UINT message : {UINT{WM_CLOSE}, UINT{WM_HELP}}) PostMessageW(m_dialog, message, 0, 0);
        for (const int command : {cmdCancel, cmdSplit})
            PostMessageW(m_dialog, WM_COMMAND, static_cast<WPARAM>(command), 0);
        PostMessageW(Control(cmdSplit), WM_KEYDOWN, VK_SPACE, 0);
    };
    Show([&] {
        BySamples(L"100", L"100");
        EXPECT_TRUE(Run("Files written: 10", IDNO)) << "the user does not want to close";
        EXPECT_EQ(files, 10) << "run once";
        fs::remove_all(m_pieces);
        files = 0;
        disturb = [&] { PostMessageW(m_dialog, WM_KEYDOWN, VK_ESCAPE, 0); };
        EXPECT_TRUE(Run("Stopped: 2 of 10 files written: 01.bin ... 02.bin"));
        EXPECT_EQ(Files(), (Names{u"01.bin", u"02.bin"}));
    });
}

TEST_F(SplitDialog, TextsFitTheirControls) {
    for (const Language language : {Language::English, Language::Russian}) {
        m_services.language = language;
        Show([&] { ExpectRoomForTexts(m_dialog); });
    }
}

}  // namespace
}  // namespace quillon
