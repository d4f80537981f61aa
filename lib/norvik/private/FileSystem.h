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

/// An open file that takes bytes.
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
    virtual void Remove(const std::u16string& path) = 0;
};

/// The one of the system.
[[nodiscard]] FileSystem& SystemFiles();

}  // namespace quillon
