#include "data/win/FileOperation.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "base/Text.h"
#include "norvik/TemporaryFolder.h"
#include "norvik/win/Timer.h"

namespace quillon {
namespace {

using testing::TemporaryFolder;
namespace fs = std::filesystem;

/// Presses a button in every dialog that the shell shows while it lives; the dialogs' own message loop drives it.
class Answers {
  public:
    explicit Answers(WORD button) : m_button(button), m_timer(MakeTimer([this] { Press(); })) {
        m_timer->PutInterval(10);
        m_timer->PutEnabled(true);
    }
    /// Number of dialogs answered.
    [[nodiscard]] int Count() const { return m_count; }

  private:
    void Press() {
        HWND dialog = nullptr;
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND window, LPARAM found) -> BOOL {
                wchar_t name[16] = {};
                GetClassNameW(window, name, 16);
                if (std::wstring_view(name) != L"#32770" || !IsWindowVisible(window)) return TRUE;
                *reinterpret_cast<HWND*>(found) = window;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&dialog));
        if (dialog == nullptr || dialog == m_answered) return;
        m_answered = dialog;
        ++m_count;
        PostMessageW(dialog, WM_COMMAND, m_button, 0);
    }

    WORD m_button;
    HWND m_answered = nullptr;
    int m_count = 0;
    std::unique_ptr<TimerObject> m_timer;
};

class FileOperation : public ::testing::Test {
  protected:
    /// Makes a file that holds its own name.
    void Make(const std::wstring& name) const { std::ofstream(m_path / name, std::ios::binary) << Content(name); }
    /// Whether a file is there as Make left it, under that name or another.
    [[nodiscard]] bool Holds(const std::wstring& name, const std::wstring& madeAs) const {
        return Read(m_path / name) == Content(madeAs);
    }
    [[nodiscard]] bool Holds(const std::wstring& name) const { return Holds(name, name); }
    [[nodiscard]] std::ptrdiff_t FileCount() const {
        return std::distance(fs::directory_iterator(m_path), fs::directory_iterator());
    }
    [[nodiscard]] bool Rename(const std::wstring& oldName, const std::wstring& newName) const {
        return RenameFile(m_path.wstring(), oldName, newName, nullptr) == FileOperationResult::Done;
    }
    [[nodiscard]] bool Delete(const std::wstring& name) const {
        return DeleteToRecycleBin(m_path.wstring(), name, nullptr) == FileOperationResult::Done;
    }
    static std::string Content(const std::wstring& name) {
        return {reinterpret_cast<const char*>(name.data()), name.size() * sizeof(wchar_t)};
    }
    static std::string Read(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    TemporaryFolder m_folder;
    fs::path m_path = fs::path(m_folder.Path()).make_preferred();
};

/// Where Wine keeps deleted files; empty on other systems, whose recycle bin has no plain files.
fs::path TrashFolder() {
    wchar_t data[MAX_PATH] = {};
    if (GetEnvironmentVariableW(L"XDG_DATA_HOME", data, MAX_PATH) != 0) return fs::path(L"Z:") / data / "Trash";
    wchar_t home[MAX_PATH] = {};
    if (GetEnvironmentVariableW(L"WINEHOMEDIR", home, MAX_PATH) == 0) return {};
    // "\??\Z:\home\user"
    return fs::path(home + 4) / ".local" / "share" / "Trash";
}

TEST_F(FileOperation, DeleteAsksAndMovesTheFileToTheRecycleBin) {
    // The trash holds all that was ever deleted there, so the name tells this run's file.
    const std::wstring unique = m_path.filename().wstring();
    const fs::path trash = TrashFolder();
    // Wine makes no trash without its parent folder.
    if (!trash.empty()) fs::create_directories(trash / "files");
    for (const std::wstring& name : {unique + L".edf", unique + L" Ночь Ā.edf"}) {
        Make(name);
        Make(L"other.edf");
        {
            const Answers no(IDNO);
            EXPECT_FALSE(Delete(name));
            EXPECT_EQ(no.Count(), 1);
        }
        EXPECT_TRUE(Holds(name));
        // Wine cannot move a file to the trash of another file system, and a hard link cannot lead there either.
        std::error_code noLink;
        const fs::path link = trash / "files" / (name + L".link");
        fs::create_hard_link(m_path / name, link, noLink);
        const Answers yes(IDYES);
        EXPECT_TRUE(Delete(name));
        EXPECT_EQ(yes.Count(), 1);
        EXPECT_FALSE(fs::exists(m_path / name));
        EXPECT_TRUE(Holds(L"other.edf"));
        EXPECT_EQ(FileCount(), 1);
        if (trash.empty() || noLink) continue;
        fs::remove(link);
        EXPECT_EQ(Read(trash / "files" / name), Content(name));
        EXPECT_TRUE(fs::remove(trash / "files" / name));
        EXPECT_TRUE(fs::remove(trash / "info" / (name + L".trashinfo")));
    }
}

TEST_F(FileOperation, DeleteTouchesNothingButAFile) {
    Make(L"A.edf");
    Make(L"Ночь.edf");
    fs::create_directory(m_path / "folder");
    const Answers yes(IDYES);
    // To a code page without them, A with macron looks like A and Cyrillic letters like wildcards.
    for (const wchar_t* name : {L"missing.edf", L"Ā.edf", L"Тень.edf", L"*", L"?.edf", L"", L".", L"folder",
                                L"folder\\", L"A.edf ", L"A.edf."}) {
        EXPECT_FALSE(Delete(name)) << Utf8(Narrow16(name));
    }
    EXPECT_EQ(DeleteToRecycleBin(m_path / L"missing", L"A.edf", nullptr), FileOperationResult::Failed);
    EXPECT_EQ(yes.Count(), 0);
    EXPECT_TRUE(Holds(L"A.edf"));
    EXPECT_EQ(FileCount(), 3);
}

TEST_F(FileOperation, RenameKeepsTheContent) {
    const Answers none(IDCANCEL);
    Make(L"a.edf");
    EXPECT_TRUE(Rename(L"a.edf", L"b c.edf"));
    EXPECT_TRUE(Holds(L"b c.edf", L"a.edf"));
    // By the ANSI call or the wide one, as the code page has it, from and to either.
    EXPECT_TRUE(Rename(L"b c.edf", L"Ночь.edf"));
    EXPECT_TRUE(Rename(L"Ночь.edf", L"Тень.edf"));
    EXPECT_TRUE(Rename(L"Тень.edf", L"Ā.edf"));
    EXPECT_TRUE(Rename(L"Ā.edf", L"Grün.edf"));
    EXPECT_TRUE(Holds(L"Grün.edf", L"a.edf"));
    EXPECT_EQ(FileCount(), 1);
    EXPECT_EQ(none.Count(), 0);
}

TEST_F(FileOperation, ARefusedRenameTouchesNothing) {
    Make(L"a.edf");
    Make(L"b.edf");
    Make(L"Тень.edf");
    fs::create_directory(m_path / "folder");
    const Answers none(IDCANCEL);
    for (const wchar_t* name :
         {L"b.edf", L"B.EDF", L"Тень.edf", L"folder", L"folder\\a.edf", L"..\\a.edf", L"C:\\a.edf", L"c*.edf", L"?",
          L"nul.edf", L"COM1", L"c.edf.", L"c.edf ", L"", L"c:d", L"a.edf"}) {
        EXPECT_FALSE(Rename(L"a.edf", name)) << Utf8(Narrow16(name));
    }
    EXPECT_FALSE(Rename(L"missing.edf", L"c.edf"));
    EXPECT_FALSE(Rename(L"folder", L"c"));
    EXPECT_FALSE(Rename(L"*.edf", L"c.edf"));
    EXPECT_EQ(none.Count(), 0);
    EXPECT_TRUE(Holds(L"a.edf"));
    EXPECT_TRUE(Holds(L"b.edf"));
    EXPECT_TRUE(Holds(L"Тень.edf"));
    EXPECT_EQ(FileCount(), 4);
}

TEST_F(FileOperation, AnotherLetterCaseIsForTheShellToDecide) {
    Make(L"a.edf");
    const bool renamed = Rename(L"a.edf", L"A.EDF");
    // Windows renames; Wine 8 takes the file for one that has the name already.
    EXPECT_EQ(fs::directory_iterator(m_path)->path().filename().wstring(), renamed ? L"A.EDF" : L"a.edf");
    EXPECT_TRUE(Holds(L"a.edf"));
    EXPECT_EQ(FileCount(), 1);
}

}  // namespace
}  // namespace quillon
