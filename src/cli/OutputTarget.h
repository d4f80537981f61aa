#pragma once

#include <memory>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>

#include "base/Language.h"
#include "cli/Options.h"
#include "norvik/OutputFile.h"

namespace quillon::cli {

/// The command cannot be done: the reason, and the file or folder that it is about where that is not the recording.
class Refusal : public std::runtime_error {
  public:
    explicit Refusal(const std::u16string& reason, std::u16string file = {});
    /// A message that already names its subject.
    [[nodiscard]] static Refusal Whole(const std::u16string& text);
    [[nodiscard]] const std::u16string& File() const { return m_file; }
    [[nodiscard]] bool IsWhole() const { return m_whole; }

  private:
    std::u16string m_file;
    bool m_whole = false;
};

/// Where a command's result goes: the standard output, or the file of --out. A file takes its place when it is
/// complete, so that a command that is refused or fails leaves nothing behind and replaces nothing.
class OutputTarget {
  public:
    /// Throws Refusal where --out is the recording itself under any spelling or exists and --force is not given. A
    /// device such as /dev/null is written where it is.
    OutputTarget(std::ostream& standard, const ParsedArguments& parsed, const std::u16string& recording,
                 Language language);

    /// Whether this is the standard output.
    [[nodiscard]] bool IsStandard() const { return m_path.empty(); }
    /// Begins the file unless it is begun; the first Write does so otherwise. Throws Refusal where the system would not
    /// let it be made or replaced.
    void Open();
    /// Throws Refusal when the bytes cannot be written.
    void Write(std::span<const char> bytes);
    /// Everything is written; throws Refusal when it cannot be brought to its end.
    void Finish();

    /// Flushes; throws Refusal when anything written to it failed.
    static void CheckStream(std::ostream& stream, Language language);

  private:
    /// Throws Refusal if the path exists and may not be replaced.
    void CheckPlace() const;

    std::ostream& m_standard;
    std::u16string m_path;  ///< empty: the standard output
    Language m_language;
    bool m_force;
    std::unique_ptr<OutputFile> m_file;
};

}  // namespace quillon::cli
