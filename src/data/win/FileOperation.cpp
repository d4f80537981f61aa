#include "data/win/FileOperation.h"

#include <optional>

#include "data/FileOperationPlan.h"
#include "data/win/AnsiText.h"
#include "data/win/FileIdentity.h"

namespace quillon {

namespace {

/// The ANSI and the wide call differ only in the character type. The texts are lists terminated by an empty string.
template <typename Operation, typename List>
FileOperationResult Perform(int(WINAPI* call)(Operation*), UINT code, FILEOP_FLAGS flags, const List& from,
                            const List& to, HWND owner) {
    Operation operation{};
    operation.hwnd = owner;
    operation.wFunc = code;
    operation.pFrom = from.data();
    operation.pTo = to.data();
    operation.fFlags = flags;
    const int failure = call(&operation);
    if (operation.fAnyOperationsAborted || failure == ERROR_CANCELLED) return FileOperationResult::Declined;
    return failure == 0 ? FileOperationResult::Done : FileOperationResult::Failed;
}

/// Paths that are each ended by a NUL.
FileOperationResult Perform(UINT code, FILEOP_FLAGS flags, std::wstring from, std::wstring to, HWND owner) {
    from.push_back(L'\0');
    to.push_back(L'\0');
    const std::optional<std::string> ansiFrom = ExactAnsi(from);
    const std::optional<std::string> ansiTo = ExactAnsi(to);
    return ansiFrom && ansiTo ? Perform(SHFileOperationA, code, flags, *ansiFrom, *ansiTo, owner)
                              : Perform(SHFileOperationW, code, flags, from, to, owner);
}

FileOperationResult Perform(UINT code, const FileOperationPlan& plan, HWND owner) {
    return Perform(code, FOF_ALLOWUNDO, Wide(plan.from) + L'\0', Wide(plan.to) + L'\0', owner);
}

/// Checked first, as the shell shows dialogs for a missing file.
bool IsFile(const std::u16string& path) {
    const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

}  // namespace

FileOperationResult DeleteToRecycleBin(const std::wstring& folder, const std::wstring& name, HWND owner) {
    const std::optional<FileOperationPlan> plan = PlanDelete(Narrow16(folder), Narrow16(name));
    if (!plan || !IsFile(plan->from)) return FileOperationResult::Failed;
    return Perform(FO_DELETE, *plan, owner);
}

FileOperationResult DeleteAllToRecycleBin(const std::wstring& folder, const std::vector<std::wstring>& names,
                                          HWND owner) {
    std::wstring from;
    for (const std::wstring& name : names) {
        const std::optional<FileOperationPlan> plan = PlanDelete(Narrow16(folder), Narrow16(name));
        if (!plan || !IsFile(plan->from)) return FileOperationResult::Failed;
        from += Wide(plan->from) + L'\0';
    }
    if (from.empty()) return FileOperationResult::Done;
    return Perform(FO_DELETE, FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_NOERRORUI, from, std::wstring(1, L'\0'), owner);
}

FileOperationResult RenameFile(const std::wstring& folder, const std::wstring& oldName, const std::wstring& newName,
                               HWND owner) {
    const std::optional<FileOperationPlan> plan = PlanRename(Narrow16(folder), Narrow16(oldName), Narrow16(newName));
    if (!plan || !IsFile(plan->from)) return FileOperationResult::Failed;
    // Checked first, as the shell may offer another name instead. What is found under a name that
    // differs in letter case only is the file itself, unless the folder tells letter cases apart.
    const bool taken = GetFileAttributesW(Wide(plan->to).c_str()) != INVALID_FILE_ATTRIBUTES;
    if (taken && !IsSamePath(Wide(plan->from), Wide(plan->to))) return FileOperationResult::Failed;
    return Perform(FO_RENAME, *plan, owner);
}

}  // namespace quillon
