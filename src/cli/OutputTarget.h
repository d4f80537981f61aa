#pragma once

#include <filesystem>
#include <fstream>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>

#include "cli/Options.h"

namespace quillon::cli {

/// The command cannot be done: the reason, and the file that it is about where that is not the recording.
class Refusal : public std::runtime_error {
  public:
    explicit Refusal(const std::u16string& reason, std::u16string file = {});
    [[nodiscard]] const std::u16string& File() const { return m_file; }

  private:
    std::u16string m_file;
};

/// Where a command's result goes: the standard output, or the file of --out. It is written beside its place under a
/// name of its own and takes its place when it is complete, so that a command that is refused or fails leaves nothing
/// behind and replaces nothing.
class OutputTarget {
  public:
    /// Throws Refusal where --out is the recording itself under any spelling or exists and --force is not given. A
    /// device such as /dev/null is written where it is.
    OutputTarget(std::ostream& standard, const ParsedArguments& parsed, const std::u16string& recording);
    ~OutputTarget();
    OutputTarget(const OutputTarget&) = delete;
    OutputTarget& operator=(const OutputTarget&) = delete;

    /// Whether this is the standard output.
    [[nodiscard]] bool IsStandard() const { return m_path.empty(); }
    /// Throws Refusal when the bytes cannot be written.
    void Write(std::span<const char> bytes);
    /// Everything is written; throws Refusal when it cannot be brought to its end.
    void Finish();

    /// Flushes; throws Refusal when anything written to it failed.
    static void CheckStream(std::ostream& stream);

  private:
    /// Throws Refusal where something stands in the place that may not be replaced.
    void CheckPlace() const;
    [[nodiscard]] std::ostream& Stream();

    std::ostream& m_standard;
    std::u16string m_path;  ///< empty: the standard output
    std::u16string m_partPath;
    std::ofstream m_file;
    bool m_device = false;
    bool m_force;
    bool m_finished = false;
};

}  // namespace quillon::cli
