#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "base/Bilingual.h"

namespace quillon {

/// The contract between the exporters and the core library's output file: one object per file written. What is written
/// takes its place, and that of a file that exists, only in Close: an object that fails or is destroyed before leaves
/// everything as it was. Nothing here throws for what the system refuses.
class OutputFile {
  public:
    virtual ~OutputFile() = default;
    /// Begins the file. False when the system would not let it be made or replaced: ErrorText gives the reason.
    [[nodiscard]] virtual bool Create(const std::u16string& fileName) = 0;
    /// Appends bytes. False when they are known not to have reached the disk; after that nothing succeeds.
    [[nodiscard]] virtual bool Write(std::span<const std::byte> bytes) = 0;
    /// Completes the file in its place. False when that fails or anything before has failed.
    [[nodiscard]] virtual bool Close() = 0;
    /// For callers that look for other things in between: gives the file up, or is called after something has failed,
    /// and frees a part of it; false when nothing is left that takes long. Destroying the object does what was not
    /// done.
    virtual bool AbandonPart() { return false; }
    /// Why the last call failed: the file's name and the system's reason.
    [[nodiscard]] virtual Bilingual ErrorText() const = 0;
};

using OutputFileFactory = std::function<std::unique_ptr<OutputFile>()>;

/// An output file that gathers what it is given into pieces of 256 KiB. It is written beside its place under a name of
/// its own ("quillon-1.part") and renamed in Close, so that the place holds a whole file at any time. Devices are
/// written where they are.
[[nodiscard]] std::unique_ptr<OutputFile> MakeOutputFile();

/// Whether something of that name exists, which a file written there would replace.
[[nodiscard]] bool FileExists(const std::u16string& path);

}  // namespace quillon
