#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quillon {

/// The contract between the text export and the core library's text writer: an open text file or clipboard buffer.
/// Destroying it without that leaves file and clipboard as they were.
class TextSink {
  public:
    virtual ~TextSink() = default;
    /// UTF-8, lines with their ends. Never throws; a failure is kept for Close.
    virtual void Write(std::string_view text) = 0;
    /// Whether a write has failed already: Close will then return false, and further text is discarded.
    [[nodiscard]] virtual bool Failed() const { return false; }
    /// Does a part of what Close would take long for; false when nothing of that is left. For callers that look for
    /// other things in between; Close does what was not done.
    virtual bool FinishPart() { return false; }
    /// The same for giving it up: does a part of what destroying it would take long for. Nothing is written afterwards.
    virtual bool AbandonPart() { return false; }
    /// Brings the text to its end: the file takes its place, the clipboard gets it here. Returns whether all of it
    /// arrived.
    virtual bool Close() = 0;
    /// What failed and why; may be empty.
    [[nodiscard]] virtual std::u16string ErrorText() const { return {}; }
};

/// Opens a file of that full name, replacing one that exists, or the clipboard for kClipboardTarget; null with the
/// reason in `error` when that fails.
using TextSinkFactory = std::function<std::unique_ptr<TextSink>(const std::u16string& target, std::u16string& error)>;

/// As a target name: write to the clipboard.
inline constexpr std::u16string_view kClipboardTarget = u"Clipboard";

}  // namespace quillon
