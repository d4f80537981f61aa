#pragma once

#include <cstdint>
#include <vector>

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

/// The files of a recording.
struct RecordingStamp {
    FileStamp own;                  ///< of the file that was opened
    std::vector<FileStamp> others;  ///< in the order of Recording::OtherFiles

    /// Whether all files can be queried.
    [[nodiscard]] bool IsKnown() const;
    /// Whether the files are those of `before`, one or more of them longer and none shorter.
    [[nodiscard]] bool HasGrownSince(const RecordingStamp& before) const;
    friend bool operator==(const RecordingStamp&, const RecordingStamp&) = default;
};

/// What has become of a file.
enum class FileChange {
    None,
    Grown,  ///< it is the same one, and longer
    Other,
};

}  // namespace quillon
