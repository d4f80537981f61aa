#pragma once

#include <cstdint>

namespace quillon {

/// Identity and modification state of a file.
struct FileStamp {
    bool known = false;  ///< false if the file does not exist or cannot be queried
    std::uint32_t volume = 0;
    std::uint64_t file = 0;      ///< number of the file on its volume
    std::uint64_t size = 0;      ///< bytes
    std::uint64_t modified = 0;  ///< time of the last change, in a unit of the system's own

    [[nodiscard]] bool IsSameFile(const FileStamp& other) const {
        return known && other.known && volume == other.volume && file == other.file;
    }
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// What has become of a file.
enum class FileChange {
    None,
    Grown,  ///< it is the same one, and longer
    Other,
};

}  // namespace quillon
