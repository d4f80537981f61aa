#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/Playback.h"
#include "data/Document.h"
#include "data/FileStamp.h"
#include "data/UserServices.h"
#include "view/WaveformView.h"

namespace quillon {

/// Looks whether the file of the recording has changed and reloads it then at the view of before. Where the file has
/// grown, a view of the end stays at the end. A file that was refused is opened again.
class RecordingReload {
  public:
    /// Objects it works with; all must outlive it.
    struct Parts {
        Document& document;
        WaveformView& view;
        Playback& playback;
        const RecordingLibrary& library;
        const UserServices& services;
    };
    explicit RecordingReload(const Parts& parts) : m_parts(parts) {}

    // To be set by the owner.
    std::function<FileStamp(const std::u16string& path)> stampOf;
    std::function<bool()> isSlow;                            ///< whether looking at the file may take long
    std::function<void(const std::u16string& name)> onOpen;  ///< request to open a file of the folder
    /// The document has changed; Kept() is to be restored. `grown`: what was there has stayed as it was.
    std::function<void(bool grown)> onReloaded;
    /// The outcome of a reload; that a file has grown is not told.
    std::function<void(bool loaded, const std::u16string& text)> onTell;

    /// Makes the next look happen even where it may take long.
    void Soon() { m_due = true; }
    /// `asked`: requested by the user, so reload at once. Else wait until no drag (`isDragging`) or playback is under
    /// way and the file is no longer being written.
    void Look(bool asked, bool isDragging);
    /// The view of before a reload that is under way.
    [[nodiscard]] const std::optional<WaveformView::State>& Kept() const { return m_kept; }

  private:
    void Reload(const RecordingStamp& stamp, const std::u16string& name, bool grown);

    Parts m_parts;
    bool m_due = false;
    std::optional<WaveformView::State> m_kept;
};

}  // namespace quillon
