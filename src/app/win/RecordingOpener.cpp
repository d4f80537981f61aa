#include "app/win/RecordingOpener.h"

#include <algorithm>
#include <utility>

#include "app/StringIds.h"
#include "app/win/BrowserPane.h"
#include "app/win/HoverCapture.h"
#include "app/win/LongCommand.h"
#include "app/win/StatusBar.h"
#include "base/FilePath.h"
#include "data/FileFilter.h"
#include "data/win/FileIdentity.h"
#include "norvik/win/OpenDialog.h"

namespace quillon {

void RecordingOpener::OpenFile(const std::wstring& name) {
    Document& document = m_shared.document;
    const std::u16string file = Narrow16(name);
    const std::u16string path = file.empty() ? file : PathOf(Narrow16(m_parts.browser.Folder()), file);
    const FileStamp stamp = StampOf(Wide(path));
    if (!path.empty() && document.IsOpen(path, stamp)) return;
    const bool first = std::exchange(m_first, false);
    std::optional<LastPlace> last;
    if (first && m_parts.browser.StartsWithLast()) last = LastPlaceOf(Kept().last.place, m_shared.view.Keep());
    std::optional<WaveformView::State> kept;
    m_awaited.reset();
    onLeave();
    if (path.empty()) {
        document.CloseCurrentFile();
    } else if (document.OpenFile(path, stamp, last ? last->block : std::int16_t{0})) {
        kept = Reached(last);
        Opened(first);
    } else {
        m_parts.status.Tell(StatusBar::Topic::Refusal, file + u": " + document.File().refusal);
    }
    onChanged(kept);
}

std::optional<WaveformView::State> RecordingOpener::Reached(const std::optional<LastPlace>& last) {
    Document& document = m_shared.document;
    if (!last) return std::nullopt;
    if (IsKnown(*last, document)) return last->view;
    m_awaited = last;
    if (document.File().currentBlockIndex > 0) document.LoadBlock(0);
    return std::nullopt;
}

bool RecordingOpener::IsAwaiting() const {
    // Not for somebody who has gone elsewhere meanwhile.
    return m_awaited && IsAtStart(m_shared.document, m_shared.view);
}

bool RecordingOpener::ShowAwaited() {
    Document& document = m_shared.document;
    if (!IsAwaiting()) m_awaited.reset();
    if (!m_awaited || !IsKnown(*m_awaited, document)) return false;
    const LastPlace place = *std::exchange(m_awaited, std::nullopt);
    const auto last = static_cast<std::int16_t>(document.File().blockCount - 1);
    onLeave();
    document.LoadBlock(std::min(place.block, last));
    onChanged(place.view);
    return true;
}

void RecordingOpener::Opened(bool first) {
    m_parts.status.Tell(StatusBar::Topic::Outcome, {});
    m_parts.browser.Opened();
    const std::u16string& path = m_shared.document.File().fileName;
    Kept().recent.Add(path);
    if (m_parts.browser.KeepsFolder()) Kept().last = {path, {}};
    // The start does not wait for that; the end of the program stores it too.
    if (!first) StoreRecordings();
}

void RecordingOpener::StoreRecordings() const {
    if (m_shared.storeRecordings) m_shared.storeRecordings();
}

void RecordingOpener::Ask() {
    m_parts.hover.End();
    const std::u16string allFiles = m_shared.services.Text(IDS_ALL_FILES);
    const std::u16string path =
        AskForFile({m_shared.services.Text(IDS_OPEN_TITLE), FilterOfTypes(m_shared.library, allFiles),
                    Narrow16(m_parts.browser.Folder())});
    if (!path.empty() && !m_parts.window.IsGone()) m_parts.browser.OpenPath(Wide(path));
}

void RecordingOpener::OpenRecent(int index) {
    const auto& paths = Kept().recent.Paths();
    // By value: opening it moves it within the list.
    const std::wstring path = Wide(paths.at(static_cast<std::size_t>(index)));
    m_parts.browser.OpenPath(path);
}

void RecordingOpener::ClearRecent() {
    Kept().recent.Clear();
    StoreRecordings();
}

void RecordingOpener::Keep() const {
    m_parts.browser.KeepSettings();
    const ViewFile& file = m_shared.document.File();
    // Without an open recording the one before is kept: whoever comes back to its folder finds it again.
    if (!file.recording || !m_parts.browser.KeepsFolder()) return;
    const LastPlace present{file.currentBlockIndex, m_shared.view.Keep()};
    Kept().last = {file.fileName, TextOf(IsAwaiting() ? *m_awaited : present)};
}

}  // namespace quillon
