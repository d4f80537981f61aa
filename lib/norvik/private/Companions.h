#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bilingual.h"
#include "base/Language.h"
#include "norvik/NorvikCore.h"
#include "norvik/private/ByteSource.h"

namespace quillon {

/// Whether a name that a file states is one of a file in a folder and nothing else: no separator, drive, stream, folder
/// or device of any system, whichever this program runs on.
[[nodiscard]] bool IsPlainFileName(std::u16string_view name);

/// The files beside a recording, for formats that keep a recording in several. Their names come out of the recording,
/// which anybody may have written: a name that is not plain is refused before the system sees it, since a path can lead
/// to a device or make the system log on to a foreign server.
class Companions {
  public:
    /// Null, with the reason in `error`, where the file cannot be opened. Gets plain names only.
    using Opener = std::function<std::shared_ptr<ByteSource>(const std::u16string& name, Bilingual& error)>;

    /// None can be opened.
    Companions() = default;
    /// For tests and fuzzers, which answer out of memory; FilesBeside is the one of the system.
    explicit Companions(Opener open) : m_open(std::move(open)) {}

    /// Null, with the reason in `error`, for a name that is not plain and for a file that cannot be opened. The reason
    /// does not state the name.
    [[nodiscard]] std::shared_ptr<ByteSource> Open(std::u16string_view name, Bilingual& error) const;

  private:
    Opener m_open;
};

/// What to tell about a file that was found under another name than the stated one.
[[nodiscard]] Bilingual ReadInstead(const std::u16string& name, const std::u16string& stated);

/// The files in the folder of `path`; where none has the name, one that differs from it in letter case only. The errors
/// of their reads are in `language`. Each that is opened is added to `opened` for as long as there is one.
[[nodiscard]] Companions FilesBeside(const std::u16string& path, Language language,
                                     const std::weak_ptr<std::vector<OtherFile>>& opened = {});

}  // namespace quillon
