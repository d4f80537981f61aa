#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "base/Bilingual.h"

/// System calls for writing files. Every call that fails leaves the system's reason in `error`.
namespace quillon {

/// Bytes after which a file that waits for the disk does so: Close at the end of a long file then takes no longer than
/// any other call.
inline constexpr std::size_t kFlushedBytes = std::size_t{16} << 20;

/// A removed file is freed in parts of that many bytes, each of some 5 ms, and 0.1 s on a disk that is still writing: 5
/// GB at once took 1 to 2 s there.
inline constexpr std::int64_t kFreedBytes = std::int64_t{32} << 20;

/// An open file that takes bytes. Destroying it closes the file without waiting for the disk.
class ByteSink {
  public:
    virtual ~ByteSink() = default;
    ByteSink() = default;
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;
    /// True when all of the bytes were taken.
    [[nodiscard]] virtual bool Write(std::span<const std::byte> bytes, Bilingual& error) = 0;
    /// True when the system reports no error that it had kept back.
    [[nodiscard]] virtual bool Close(Bilingual& error) = 0;
    /// Cuts kFreedBytes off the end of a file that was removed while it was open; false when no more than that is left.
    [[nodiscard]] virtual bool FreePart() = 0;
};

/// Where a file is to be written.
struct Place {
    std::u16string path;               ///< behind links, where the system has them
    std::unique_ptr<ByteSink> device;  ///< open, where a device or a pipe stands there; it is written where it is
    /// A file stands there, whose owner, group and permissions the one that replaces it gets, where the system has
    /// them.
    bool replaces = false;
    std::uint32_t mode = 0;
    std::uint32_t owner = 0;
    std::uint32_t group = 0;
};

class FileSystem {
  public:
    virtual ~FileSystem() = default;
    FileSystem() = default;
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;

    /// Nothing where the path is no place for a file, or the file there is write-protected or, on Windows, open.
    [[nodiscard]] virtual std::optional<Place> FindPlace(const std::u16string& path, Bilingual& error) = 0;
    /// Makes a file for that place under an unused name. Null when it cannot; `taken` where the reason is that
    /// something has the name. Where it is going to replace a file, its Close waits for the disk, so that a
    /// loss of power leaves the old file or the whole new one; so does Write every kFlushedBytes.
    [[nodiscard]] virtual std::unique_ptr<ByteSink> CreateNew(const std::u16string& path, const Place& place,
                                                              bool& taken, Bilingual& error) = 0;
    /// Gives a file that name, replacing a file that has it, in one step.
    [[nodiscard]] virtual bool Rename(const std::u16string& from, const std::u16string& to, Bilingual& error) = 0;
    /// A file that a sink of CreateNew has open goes when that is destroyed, at the latest, also by the end of the
    /// program. False when nothing was removed.
    virtual bool Remove(const std::u16string& path) = 0;
};

/// The one of the system.
[[nodiscard]] FileSystem& SystemFiles();

}  // namespace quillon
