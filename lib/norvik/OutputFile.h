#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "data/OutputFile.h"

namespace quillon {

/// An open file that takes bytes; closed at the end of its life at the latest.
class ByteSink {
  public:
    virtual ~ByteSink() = default;
    ByteSink() = default;
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;
    /// True when all of the bytes were taken.
    [[nodiscard]] virtual bool Write(std::span<const std::byte> bytes) = 0;
    /// True when the system reports no error that it had kept back.
    [[nodiscard]] virtual bool Close() = 0;
};

/// Creates a file, or empties one that exists. Null when the system refuses, with its reason in `error`. On Windows a
/// file that anyone has open is refused, and with it the recording that is being exported.
[[nodiscard]] std::unique_ptr<ByteSink> CreateFileSink(const std::u16string& path, std::u16string& error);

/// An output file that gathers what it is given into pieces of 256 KiB. Its error text names the file and the reason.
[[nodiscard]] std::unique_ptr<OutputFile> MakeOutputFile();

}  // namespace quillon
