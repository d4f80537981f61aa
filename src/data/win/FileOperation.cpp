#include "data/win/FileOperation.h"

#include <optional>

#include "data/FileOperationPlan.h"
#include "data/win/AnsiText.h"

namespace quillon {

namespace {

/// The ANSI and the wide call differ in nothing but their character. The texts are lists that an empty one ends.
template <typename Operation, typename List>
FileOperationResult Perform(int(WINAPI* call)(Operation*), UINT code, const List& from, const List& to, HWND owner) {
    Operation operation{};
    operation.hwnd = owner;
    operation.wFunc = code;
    operation.pFrom = from.data();
    operation.pTo = to.data();
    operation.fFlags = FOF_ALLOWUNDO;
    const int failure = call(&operation);
    if (operation.fAnyOperationsAborted || failure == ERROR_CANCELLED) return FileOperationResult::Declined;
    return failure == 0 ? FileOperationResult::Done : FileOperationResult::Failed;
}

FileOperationResult Perform(UINT code, const FileOperationPlan& plan, HWND owner) {
    const std::wstring from = Wide(plan.from) + std::wstring(2, L'\0');
    const std::wstring to = Wide(plan.to) + std::wstring(2, L'\0');
    const std::optional<std::string> ansiFrom = ExactAnsi(from);
    const std::optional<std::string> ansiTo = ExactAnsi(to);
    return ansiFrom && ansiTo ? Perform(SHFileOperationA, code, *ansiFrom, *ansiTo, owner)
                              : Perform(SHFileOperationW, code, from, to, owner);
}

/// Asked before the shell, which answers a missing file with dialogs.
bool IsFile(const std::u16string& path) {
    const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool DiffersInCaseOnly(const std::u16string& a, const std::u16string& b) {
    return CompareStringOrdinal(Wide(a).c_str(), -1, Wide(b).c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

FileOperationResult DeleteToRecycleBin(const std::wstring& folder, const std::wstring& name, HWND owner) {
    const std::optional<FileOperationPlan> plan = PlanDelete(Narrow16(folder), Narrow16(name));
    if (!plan || !IsFile(plan->from)) return FileOperationResult::Failed;
    return Perform(FO_DELETE, *plan, owner);
}

FileOperationResult RenameFile(const std::wstring& folder, const std::wstring& oldName, const std::wstring& newName,
                               HWND owner) {
    const std::optional<FileOperationPlan> plan = PlanRename(Narrow16(folder), Narrow16(oldName), Narrow16(newName));
    if (!plan || !IsFile(plan->from)) return FileOperationResult::Failed;
    // Asked before the shell, which may offer the user yet another name instead. What is found under a name that
    // differs in letter case only is the file itself.
    const bool taken = GetFileAttributesW(Wide(plan->to).c_str()) != INVALID_FILE_ATTRIBUTES;
    if (taken && !DiffersInCaseOnly(plan->from, plan->to)) return FileOperationResult::Failed;
    return Perform(FO_RENAME, *plan, owner);
}

}  // namespace quillon
