#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace quillon {

/// The contract between the exporters and the core library's output file: one object per file written. Nothing here
/// throws for what the system refuses; it is counted, because an export goes on to its end.
class OutputFile {
  public:
    virtual ~OutputFile() = default;
    /// Creates the file, replacing one that exists. False when the system refuses: ErrorText tells why.
    [[nodiscard]] virtual bool Create(const std::u16string& fileName) = 0;
    /// Appends bytes. False, and counted, when they are known not to have reached the file; after one such failure
    /// nothing more is written, so that what is in the file is the beginning of what was meant.
    virtual bool Write(std::span<const std::byte> bytes) = 0;
    /// Brings everything to the file. False, and counted, when that fails.
    virtual bool Close() = 0;
    /// Why Create failed.
    [[nodiscard]] virtual std::u16string ErrorText() const = 0;
    /// Failed calls of Write and Close; above 0 the file is incomplete.
    [[nodiscard]] virtual std::size_t FailureCount() const = 0;
};

using OutputFileFactory = std::function<std::unique_ptr<OutputFile>()>;

}  // namespace quillon
