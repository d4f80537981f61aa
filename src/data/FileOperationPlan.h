#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// The paths of one file operation of the shell.
struct FileOperationPlan {
    std::u16string from;
    std::u16string to;  ///< empty unless the file gets a new name
};

/// Whether a name can stand for one file in a folder and for nothing else: no separator, wildcard, stream or control
/// character, not the name of a device (NUL, COM1.edf), and no blank or point at the end, which the system drops.
[[nodiscard]] bool IsFileName(std::u16string_view name);

/// None when the paths might not name exactly the intended file: the folder has to be absolute (the shell deletes
/// files named otherwise for good), names have to satisfy IsFileName, and paths have to stay below the shell's 260
/// characters.
[[nodiscard]] std::optional<FileOperationPlan> PlanDelete(std::u16string_view folder, std::u16string_view name);
/// The same; also nothing when the name stays what it was.
[[nodiscard]] std::optional<FileOperationPlan> PlanRename(std::u16string_view folder, std::u16string_view oldName,
                                                          std::u16string_view newName);

}  // namespace quillon
