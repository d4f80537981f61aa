#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>

#include "norvik/private/ReadRecording.h"

namespace quillon::fuzz {

/// A check that failed: libFuzzer sees an uncaught exception, a unit test a failure.
class CheckFailed : public std::logic_error {
  public:
    using std::logic_error::logic_error;
};

/// `condition` says what is expected.
inline void Require(bool holds, const char* condition) {
    if (!holds) throw CheckFailed(condition);
}

/// What the fuzzer's bytes mean. They are a file as it is; its last four bytes also choose what happens around it, so
/// that any recording can be a seed: the extension of its name (which chooses the reader where the first bytes do not),
/// how often its end is repeated (vector code and piece buffers need more bytes than an input has), and after how many
/// reads the file is shorter than when it was opened, and by how much. The first of the four also decides whether the
/// files beside it exist: each is then the second half of the bytes, whatever its name.
struct FuzzedRecording {
    RecordingContent content;
    bool isLong = false;   ///< its end is repeated: more samples are worth a look
    bool shrinks = false;  ///< reads that worked may fail when they are repeated
};

/// Nothing for bytes that are refused as no recording. Blocks throw ReadError once the file has become shorter.
[[nodiscard]] std::optional<FuzzedRecording> OpenFuzzed(std::span<const std::uint8_t> bytes);

/// Positions of the blocks that are looked at: a few bytes can declare thousands of blocks, and one input must not take
/// longer than a second.
[[nodiscard]] std::vector<std::size_t> BlocksToCheck(const RecordingContent& content);

}  // namespace quillon::fuzz
