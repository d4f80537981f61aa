#include "app/RecordingReload.h"

#include <utility>

#include "app/StringIds.h"
#include "base/FilePath.h"

namespace quillon {

void RecordingReload::Look(bool asked, bool isDragging) {
    const Document& document = m_parts.document;
    if (!asked) {
        // Do not interrupt a drag or playback.
        if (isDragging || m_parts.playback.IsPlaying()) return;
        const bool due = std::exchange(m_due, false) || document.ChangePending();
        if (!due && isSlow()) return;
    }
    RecordingStamp stamp{stampOf(document.LastPath()), {}};
    for (const OtherFile& file : document.OtherFiles()) stamp.others.push_back(stampOf(file.path));
    const FileChange change = m_parts.document.ChangeOf(stamp, asked);
    if (change == FileChange::None) return;
    const std::u16string name = FileNameOf(document.File().fileName);
    if (name.empty()) return onOpen(FileNameOf(document.LastPath()));
    try {
        Reload(stamp, name, change == FileChange::Grown);
    } catch (...) {
        m_kept.reset();
        throw;
    }
}

void RecordingReload::Reload(const RecordingStamp& stamp, const std::u16string& name, bool grown) {
    m_parts.playback.Stop();
    m_kept = m_parts.view.Keep();
    m_kept->followsEnd = grown && m_parts.view.IsAtEnd();
    if (grown) m_parts.view.AllExtremes().FileGrows();
    const bool loaded = m_parts.document.Reload(stamp);
    if (loaded) onReloaded(grown);
    m_kept.reset();
    if (loaded && grown) return;
    const std::u16string text = name + u": " + m_parts.services.Text(loaded ? IDS_FILE_RELOADED : IDS_FILE_CHANGED);
    onTell(loaded, loaded ? text : text + u": " + m_parts.library.LastErrorText());
}

}  // namespace quillon
