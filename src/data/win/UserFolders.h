#pragma once

#include <string>

namespace quillon {

// Folders to begin with where no other is known. Each is empty when the system does not tell it, and may be missing.

/// The user's documents. Loads the shell's library.
[[nodiscard]] std::wstring DocumentsFolder();
/// What the user's folders lie in.
[[nodiscard]] std::wstring ProfileFolder();
/// The root of the drive with the system.
[[nodiscard]] std::wstring SystemDrive();

}  // namespace quillon
