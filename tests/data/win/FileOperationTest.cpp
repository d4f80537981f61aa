#include "data/win/FileOperation.h"

#include <gtest/gtest.h>

#include <fstream>

#include "app/win/MainWindowFixture.h"
#include "base/Text.h"
#include "norvik/TemporaryFolder.h"

namespace quillon {
namespace {

using testing::TemporaryFolder;
namespace fs = std::filesystem;

class FileOperation : public ::testing::Test {
  protected:
    /// Makes a file that holds its own name.
    void Make(const std::wstring& name) const { std::ofstream(m_path / name, std::ios::binary) << Content(name); }
    /// Whether a file is there as Make left it, under that name or another.
    [[nodiscard]] bool Holds(const std::wstring& name, const std::wstring& madeAs) const {
        return testing::Contents(m_path / name) == Content(madeAs);
    }
    [[nodiscard]] bool Holds(const std::wstring& name) const { return Holds(name, name); }
    [[nodiscard]] std::ptrdiff_t FileCount() const {
        return std::distance(fs::directory_iterator(m_path), fs::directory_iterator());
    }
    [[nodiscard]] FileOperationResult Rename(const std::wstring& oldName, const std::wstring& newName) const {
        return RenameFile(m_path.wstring(), oldName, newName, nullptr);
    }
    [[nodiscard]] FileOperationResult Delete(const std::wstring& name) const {
        return DeleteToRecycleBin(m_path.wstring(), name, nullptr);
    }
    /// Deletes a file, with one dialog that is answered with that button.
    [[nodiscard]] FileOperationResult DeleteAnswering(WORD button, const std::wstring& name) const {
        bool asked = false;
        const testing::DialogAnswer answer([&](HWND dialog) {
            asked = true;
            PostMessageW(dialog, WM_COMMAND, button, 0);
        });
        const FileOperationResult result = Delete(name);
        EXPECT_TRUE(asked);
        return result;
    }
    static std::string Content(const std::wstring& name) {
        return {reinterpret_cast<const char*>(name.data()), name.size() * sizeof(wchar_t)};
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
    // The trash holds all that was ever deleted there, so the file of this run has a unique name.
    const std::wstring unique = m_path.filename().wstring();
    const fs::path trash = TrashFolder();
    // Wine makes no trash without its parent folder.
    if (!trash.empty()) fs::create_directories(trash / "files");
    for (const std::wstring& name : {unique + L".edf", unique + L" Ночь Ā.edf"}) {
        Make(name);
        Make(L"other.edf");
        EXPECT_EQ(DeleteAnswering(IDNO, name), FileOperationResult::Declined);
        EXPECT_TRUE(Holds(name));
        // Wine cannot move a file to the trash of another file system, and a hard link cannot lead there either.
        std::error_code noLink;
        const fs::path link = trash / "files" / (name + L".link");
        fs::create_hard_link(m_path / name, link, noLink);
        EXPECT_EQ(DeleteAnswering(IDYES, name), FileOperationResult::Done);
        EXPECT_FALSE(fs::exists(m_path / name));
        EXPECT_TRUE(Holds(L"other.edf"));
        EXPECT_EQ(FileCount(), 1);
        if (trash.empty() || noLink) continue;
        fs::remove(link);
        EXPECT_EQ(testing::Contents(trash / "files" / name), Content(name));
        EXPECT_TRUE(fs::remove(trash / "files" / name));
        EXPECT_TRUE(fs::remove(trash / "info" / (name + L".trashinfo")));
    }
}

TEST_F(FileOperation, ARefusedOperationChangesNoFile) {
    for (const wchar_t* name : {L"A.edf", L"b.edf", L"Тень.edf"}) Make(name);
    fs::create_directory(m_path / "folder");
    testing::DialogCloser dialogs;
    // To a code page without them, A with macron looks like A and Cyrillic letters like wildcards.
    for (const wchar_t* name : {L"missing.edf", L"Ā.edf", L"Ночь.edf", L"*", L"?.edf", L"", L"folder", L"A.edf "}) {
        EXPECT_EQ(Delete(name), FileOperationResult::Failed) << Utf8(Narrow16(name));
        EXPECT_EQ(Rename(name, L"c.edf"), FileOperationResult::Failed) << Utf8(Narrow16(name));
    }
    EXPECT_EQ(DeleteToRecycleBin(m_path / L"missing", L"A.edf", nullptr), FileOperationResult::Failed);
    for (const wchar_t* name : {L"b.edf", L"B.EDF", L"Тень.edf", L"folder", L"..\\a.edf", L"A.edf"})
        EXPECT_EQ(Rename(L"A.edf", name), FileOperationResult::Failed) << Utf8(Narrow16(name));
    EXPECT_EQ(dialogs.Titles(), L"");
    for (const wchar_t* name : {L"A.edf", L"b.edf", L"Тень.edf"}) EXPECT_TRUE(Holds(name));
    EXPECT_EQ(FileCount(), 4);
}

TEST_F(FileOperation, RenameKeepsTheContent) {
    testing::DialogCloser dialogs;
    // By the ANSI call or the wide one, as the code page has it, from and to either.
    const std::vector<std::wstring> names{L"a.edf", L"b c.edf", L"Ночь.edf", L"Тень.edf", L"Ā.edf", L"Grün.edf"};
    Make(names[0]);
    for (std::size_t at = 1; at < names.size(); ++at) {
        EXPECT_EQ(Rename(names[at - 1], names[at]), FileOperationResult::Done) << at;
    }
    EXPECT_TRUE(Holds(names.back(), names[0]));
    EXPECT_EQ(FileCount(), 1);
    EXPECT_EQ(dialogs.Titles(), L"");
}

}  // namespace
}  // namespace quillon
