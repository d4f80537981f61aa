#include <algorithm>
#include <utility>

#include "app/ControlIds.h"
#include "app/win/InputBox.h"
#include "app/win/frmQLMain.h"
#include "base/FilePath.h"
#include "base/StringIds.h"
#include "data/ChannelSelection.h"
#include "data/FileOperationPlan.h"
#include "data/win/FileIdentity.h"
#include "data/win/FileOperation.h"

namespace quillon {

void frmQLMain::OnListCommand(int id, int notification) {
    if (notification == LBN_SETFOCUS || notification == LBN_KILLFOCUS) ShowFocus();
    if (id == lstFile && notification == LBN_SELCHANGE) ChooseFile();
    if (id == lstBlock && notification == LBN_SELCHANGE) ClickBlock();
    if (id == lstDir && notification == LBN_DBLCLK) ShowFolder(m_browser.ChosenFolder());
    if (id == lstDrive && notification == CBN_SELCHANGE) SelectDrive();
    if (id == lstDrive && notification == CBN_DROPDOWN) m_browser.ListDrives();
    if (id == cboFileType && notification == CBN_SELCHANGE) SelectType();
}

LRESULT frmQLMain::OnNotify(const NMHDR* header) {
    if (header->code == TTN_GETDISPINFOW) {
        OnToolTip(const_cast<NMTTDISPINFOW*>(reinterpret_cast<const NMTTDISPINFOW*>(header)));
        return 0;
    }
    if (header->code == TCN_SELCHANGE) ShowPages();
    if (header->code == NM_SETFOCUS || header->code == NM_KILLFOCUS) ShowFocus();
    // The list takes the release of the button for itself.
    if (header->code == NM_CLICK) ReturnKeyboard(static_cast<int>(header->idFrom));
    // A click on the item itself, or the way to it by keys, chooses the channel for what concerns one at a time.
    // A click that changes it is told twice, by the change and by itself.
    if (header->idFrom == lvCh && header->code == LVN_KEYDOWN) m_channelByKey = true;
    if (header->idFrom == lvCh && header->code == NM_CLICK && m_channels.IsOnItem(header) &&
        !std::exchange(m_channelTold, false))
        ChooseChannel();
    if (header->idFrom == lvCh && header->code == LVN_ITEMCHANGED && !m_channels.Filling()) {
        const auto* change = reinterpret_cast<const NMLISTVIEW*>(header);
        const bool chosen = (change->uNewState & LVIS_SELECTED) != 0 && (change->uOldState & LVIS_SELECTED) == 0;
        if ((change->uChanged & LVIF_STATE) != 0 && chosen) {
            m_channelTold = !std::exchange(m_channelByKey, false);
            m_document.ChooseChannel(static_cast<std::int16_t>(change->iItem + 1));
            ChooseChannel();
        }
        if ((change->uChanged & LVIF_STATE) != 0 &&
            ((change->uNewState ^ change->uOldState) & LVIS_STATEIMAGEMASK) != 0) {
            m_document.Show(static_cast<std::int16_t>(change->iItem + 1), m_channels.IsChecked(change->iItem));
            Refresh();
        }
    }
    return 0;
}

void frmQLMain::ChooseChannel() {
    StopSound();
    ChooseSpectrumChannel();
    Spectrogram_Draw(true);
    TellUnreadable(false);
    KeepValuesTrue();
}

void frmQLMain::ShowPages() {
    const auto page = [&](int tabs) { return TabCtrl_GetCurSel(GetDlgItem(m_window, tabs)); };
    const auto show = [&](int id, bool visible) {
        ShowWindow(GetDlgItem(m_window, id), visible ? SW_SHOWNA : SW_HIDE);
    };
    // What is hidden loses the focus, which would leave it with no control at all.
    const HWND focus = GetFocus();
    for (const int id : {lstDrive, lstDir, lvCh, cboFileType, lstFile, lstBlock}) {
        const bool upper = id == lstDrive || id == lstDir || id == lvCh;
        const int shown = upper ? page(tabPath) : page(tabFile);
        if (focus == GetDlgItem(m_window, id) && shown != (id == lvCh || id == lstBlock ? 1 : 0))
            SetFocus(m_graphBox.Window());
    }
    show(lstDrive, page(tabPath) == 0);
    show(pbPathList, page(tabPath) == 0);
    show(lstDir, page(tabPath) == 0);
    show(lvCh, page(tabPath) == 1);
    show(cboFileType, page(tabFile) == 0);
    show(lstFile, page(tabFile) == 0);
    show(lstBlock, page(tabFile) == 1);
}

bool frmQLMain::ShowFolder(const std::wstring& folder) {
    if (m_browser.Shows(folder)) {
        // It may have been away in between.
        RefreshFiles();
        return true;
    }
    if (!m_browser.ShowFolder(folder)) {
        m_status.Tell(StatusBar::Topic::Outcome, Narrow16(folder) + u": " + m_services.Text(IDS_FOLDER_UNREADABLE));
        m_browser.ShowChoice();
        return false;
    }
    m_folderMissing = false;
    m_status.Tell(StatusBar::Topic::Outcome, {});
    ClickFile();
    StartWatch();
    TellIncomplete();
    return true;
}

void frmQLMain::OpenUnlisted(const std::wstring& name) {
    // No line of the list stands for it, so none may look as if delete and rename would concern it.
    m_browser.SelectFile(-1);
    FollowFileList();
    OpenFile(name);
    UpdateCommands();
}

void frmQLMain::OpenPath(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        ShowFolder(path);
        return;
    }
    const std::size_t end = path.rfind(L'\\');
    if (end == std::wstring::npos) return;
    const std::wstring name = path.substr(end + 1);
    // The root of a drive keeps its backslash.
    if (!ShowFolder(path.substr(0, end == 2 ? 3 : end))) return;
    m_folderMissing = false;
    if (m_browser.SelectFileNamed(name)) {
        ClickFile();
    } else {
        // A name that the listed type leaves out: its content may be readable all the same.
        OpenUnlisted(name);
    }
}

void frmQLMain::OfferFolder(const std::u16string& folder) {
    m_global.settings.pathList.Add(folder, [](const std::u16string& path) {
        const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    });
}

void frmQLMain::ShowPathList() {
    const Menu menu(CreatePopupMenu());
    const auto& folders = m_global.settings.pathList.Folders();
    for (std::size_t at = 0; at < folders.size(); ++at) {
        std::wstring caption;
        // An ampersand in a name is a letter, not a mnemonic.
        for (const wchar_t letter : Wide(folders[at])) caption += letter == L'&' ? L"&&" : std::wstring(1, letter);
        AppendMenuW(menu.Get(), MF_STRING, static_cast<UINT_PTR>(mnuPathList) + at, caption.c_str());
    }
    if (folders.empty()) AppendMenuW(menu.Get(), MF_GRAYED, 0, Wide(m_services.Text(IDS_PATHLIST_EMPTY)).c_str());
    RECT box{};
    GetWindowRect(m_pathListBox.Window(), &box);
    TrackPopupMenu(menu.Get(), TPM_RIGHTALIGN | TPM_TOPALIGN, box.right, box.bottom, 0, m_window, nullptr);
}

void frmQLMain::ChoosePath(int index) {
    const auto& folders = m_global.settings.pathList.Folders();
    if (static_cast<std::size_t>(index) < folders.size()) ShowFolder(Wide(folders[static_cast<std::size_t>(index)]));
}

void frmQLMain::StartWatch() {
    m_watch->StartWatch(m_browser.Folder());
}

void frmQLMain::FollowFileList() {
    m_global.fileCount = m_browser.FileCount();
    m_global.filePosition = m_browser.SelectedPosition();
    // It says how to begin.
    if (!m_document.Block().block) m_graphBox.Invalidate();
}

void frmQLMain::TellIncomplete() {
    if (m_browser.IsComplete()) return;
    m_status.Tell(StatusBar::Topic::Folder,
                  Narrow16(m_browser.Folder()) + u": " +
                      m_services.Text(m_browser.IsReadable() ? IDS_FOLDER_INCOMPLETE : IDS_FOLDER_UNREADABLE));
}

void frmQLMain::RefreshFiles() {
    // The watch ends with a folder that goes, and does not know when it is back. It comes first, so that what happens
    // between the two is told by it.
    StartWatch();
    // What was missing may be back.
    m_status.Retract(StatusBar::Topic::Folder);
    FilesChanged();
    LookAtRecording(true);
    TellIncomplete();
}

void frmQLMain::FilesChanged() try {
    m_changedMeanwhile = m_long.IsBusy();
    if (m_long.IsBusy()) return;
    const bool wasSelected = m_browser.SelectedPosition() >= 0;
    m_browser.Refresh();
    // A refused file that is gone needs no explanation any more.
    if (wasSelected && m_browser.SelectedPosition() < 0 && m_document.File().fileName.empty()) ClickFile();
    const std::wstring open = Wide(m_document.File().fileName);
    const bool unseen = !open.empty() && GetFileAttributesW(open.c_str()) == INVALID_FILE_ATTRIBUTES;
    const DWORD reason = GetLastError();
    // Any other reason may pass, as a network's does.
    if (unseen && (reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND)) {
        const std::u16string name = FileNameOf(m_document.File().fileName);
        m_browser.SelectFile(-1);
        ClickFile();
        m_status.Tell(StatusBar::Topic::Folder, name + u": " + m_services.Text(IDS_FILE_GONE));
    }
    FollowFileList();
    m_lookDue = true;
    UpdateCommands();
} catch (const std::exception& error) {
    Failed(error);
}

void frmQLMain::LookAtRecording(bool asked) try {
    if (m_long.IsBusy() || m_closing || !IsWindowEnabled(m_window)) return;
    if (!asked) {
        // Neither a drag nor the sound is disturbed.
        if (m_gestures.Current() != GraphGestures::Kind::None || m_drag != Drag::None || m_playback.IsPlaying()) return;
        const bool due = std::exchange(m_lookDue, false) || m_document.ChangePending();
        if (!due && IsRemote(m_browser.Folder())) return;
    }
    const FileStamp stamp = StampOf(Wide(m_document.LastPath()));
    if (!m_document.HasChanged(stamp, asked)) return;
    const std::u16string name = FileNameOf(m_document.File().fileName);
    if (name.empty()) return OpenFile(Wide(FileNameOf(m_document.LastPath())));
    StopSound();
    m_kept = m_view.Keep();
    const bool loaded = m_document.Reload(stamp);
    if (loaded) {
        LeaveBlock();
        RecordingChanged();
    }
    m_kept.reset();
    // What was told of something else stays, unless this is of more use.
    const std::u16string text = name + u": " + m_services.Text(loaded ? IDS_FILE_RELOADED : IDS_FILE_CHANGED);
    if (loaded) {
        m_status.Offer(StatusBar::Topic::Reload, text);
    } else {
        m_status.Tell(StatusBar::Topic::Reload, text + u": " + m_global.library->LastErrorText());
    }
} catch (const std::exception& error) {
    m_kept.reset();
    Failed(error);
}

void frmQLMain::FileCommand(int index) {
    if (index == 0) {
        DeleteSelected();
    } else {
        RenameSelected();
    }
}

void frmQLMain::DeleteSelected() {
    const std::wstring folder = m_browser.Folder();
    const std::wstring name = m_browser.SelectedFile();
    const int position = m_browser.SelectedPosition();
    if (name.empty()) return;
    CloseCurrentFile();
    m_watch->StopWatch();
    if (!m_long.RunPending()) return;
    const FileOperationResult result = DeleteToRecycleBin(folder, name, m_window);
    // The shell's dialog runs messages: the window may be closed by now, or show another folder.
    if (m_window == nullptr || m_closing) return;
    // Whatever came of it: others may have changed the folder meanwhile.
    RefreshFiles();
    if (m_browser.Folder() != folder) return;
    if (result == FileOperationResult::Done) m_browser.SelectFile(std::min(position, m_browser.FileCount() - 1));
    ClickFile();
    if (result == FileOperationResult::Failed)
        m_status.Tell(StatusBar::Topic::Outcome, Narrow16(name) + u": " + m_services.Text(IDS_DELETE_FAILED));
}

void frmQLMain::RenameSelected() {
    const std::wstring folder = m_browser.Folder();
    const std::wstring name = m_browser.SelectedFile();
    if (name.empty()) return;
    const std::optional<std::wstring> answer =
        AskForText(m_window,
                   {Wide(m_services.Text(IDS_RENAME)), Wide(m_services.Text(IDS_NEW_NAME)),
                    Wide(m_services.Text(IDS_OK)), Wide(m_services.Text(IDS_CANCEL))},
                   name, name.rfind(L'.'));
    if (m_window == nullptr || m_closing || !answer || answer->empty() || *answer == name) return;
    const std::u16string failure = Narrow16(name) + u": " + m_services.Text(IDS_RENAME_FAILED);
    if (!PlanRename(Narrow16(folder), Narrow16(name), Narrow16(*answer))) {
        // Nothing that the shell could do: the recording stays open as it is.
        m_status.Tell(StatusBar::Topic::Outcome, failure);
        return;
    }
    CloseCurrentFile();
    m_watch->StopWatch();
    if (!m_long.RunPending()) return;
    const FileOperationResult result = RenameFile(folder, name, *answer, m_window);
    if (m_window == nullptr || m_closing) return;
    RefreshFiles();
    if (m_browser.Folder() != folder) return;
    const bool renamed = result == FileOperationResult::Done;
    if (renamed && !m_browser.SelectFileNamed(*answer)) {
        OpenUnlisted(*answer);
        return;
    }
    ClickFile();
    if (!renamed) m_status.Tell(StatusBar::Topic::Outcome, failure);
}

void frmQLMain::SelectDrive() {
    const std::wstring drive = m_browser.ChosenDrive();
    // The drive that is shown already leaves the folder as it is, unless that has gone.
    const std::wstring& shown = m_browser.Folder();
    const bool stays = !shown.empty() && towupper(shown[0]) == towupper(drive[0]) &&
                       GetFileAttributesW(shown.c_str()) != INVALID_FILE_ATTRIBUTES;
    stays ? RefreshFiles() : static_cast<void>(ShowFolder(drive));
}

void frmQLMain::SelectType() {
    const auto type = SendMessageW(GetDlgItem(m_window, cboFileType), CB_GETCURSEL, 0, 0);
    m_browser.SetPattern(m_global.library->FileTypeMask(static_cast<std::int32_t>(type)));
    FollowFileList();
    UpdateCommands();
    if (m_document.File().fileName.empty()) return;
    m_browser.SelectFileNamed(Wide(FileNameOf(m_document.File().fileName)));
    ClickFile();
}

void frmQLMain::ChooseFile() {
    ClickFile();
    // The folder that this one stands for is not asked for again.
    if (m_document.File().recording) m_folderMissing = false;
}

void frmQLMain::ClickFile() {
    FollowFileList();
    OpenFile(m_browser.SelectedFile());
    LookAtRecording(true);
}

void frmQLMain::OpenNeighbour(int index) {
    const int position = m_browser.SelectedPosition();
    m_browser.SelectFile(index == 1 ? position + 1 : position < 0 ? m_browser.FileCount() - 1 : position - 1);
    ChooseFile();
}

void frmQLMain::ClickBlock() {
    LeaveBlock();
    m_document.LoadBlock(static_cast<std::int16_t>(m_blocks.Selected()));
    ShowBlock();
}

void frmQLMain::OpenFile(const std::wstring& name) {
    const std::u16string folder = Narrow16(m_browser.Folder());
    const std::u16string path = name.empty() ? std::u16string() : PathOf(folder, Narrow16(name));
    const FileStamp stamp = StampOf(Wide(path));
    if (!path.empty() && m_document.IsOpen(path, stamp)) return;
    LeaveBlock();
    if (path.empty()) {
        m_document.CloseCurrentFile();
    } else if (m_document.OpenFile(path, stamp)) {
        m_status.Tell(StatusBar::Topic::Outcome, {});
        if (m_browser.Pattern() != u"*.*") OfferFolder(folder);
    } else {
        m_status.Tell(StatusBar::Topic::Outcome, Narrow16(name) + u": " + m_document.File().refusal);
    }
    RecordingChanged();
}

void frmQLMain::CloseCurrentFile() {
    LeaveBlock();
    m_document.CloseCurrentFile();
}

void frmQLMain::RecordingChanged() {
    m_blocks.Fill(m_document.BlockTitles());
    m_blocks.Select(m_document.File().currentBlockIndex);
    ShowBlock();
}

void frmQLMain::LeaveBlock() {
    StopSound();
    // A gesture or readout under way concerns what is no longer there.
    EndGesture();
    EndHover();
    const HWND capture = GetCapture();
    if (capture != nullptr && (capture == m_graphBox.Window() || capture == m_scaleYBox.Window())) ReleaseCapture();
    m_menuChannel = 0;
    m_unreadable.clear();
    m_status.Retract(StatusBar::Topic::Unreadable);
    m_view.LeaveBlock();
    m_graph.ForgetBlock();
    m_fft.FFT_ClearState();
    if (!m_closing) m_graph.Clear(m_layout.graph.width, m_layout.graph.height);
}

void frmQLMain::ShowBlock() {
    m_view.BlockLoaded();
    m_view.Arrange(m_layout.graph.width, m_layout.graph.height);
    if (m_kept) m_view.Restore(*m_kept);
    if (m_complete) ShowBlockDetails();
    if (!m_kept) FitUnlessLegible();
    ShowCaption();
    Refresh();
    if (m_kept && m_view.Selected().active) ShowRange();
    if (m_complete) ShowBlockSpectrum();
}

void frmQLMain::ShowBlockDetails() {
    m_channels.Fill(m_document.Block(), m_document.Slots());
    if (m_kept) m_channels.Choose(m_document.CurrentChannel() - 1);
    TellDetails();
}

void frmQLMain::ShowBlockSpectrum() {
    if (!m_global.settings.spectrogramShown) return;
    // The range of the channel takes a look at the whole block: the waveform is seen before.
    UpdateWindow(m_graphBox.Window());
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    Spectrogram_Init(true);
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
}

void frmQLMain::ShowCaption() {
    std::wstring caption = L"Quillon";
    if (!m_document.File().fileName.empty()) {
        std::wstring block = m_blocks.Text(m_document.File().currentBlockIndex);
        block.resize(std::min(block.find(L'\t'), block.size()));
        caption = Wide(FileNameOf(m_document.File().fileName));
        if (!block.empty()) caption += L" - [" + block + L"]";
    }
    SetWindowTextW(m_window, caption.c_str());
}

void frmQLMain::SetAllShown(int index) {
    const int count = static_cast<int>(m_document.Block().channelNumbers.size());
    // The check mark of a channel without a slot is the list's own.
    for (int item = 0; item < count; ++item)
        m_channels.Check(item, index == 0 || (index == 2 && !m_channels.IsChecked(item)));
    if (index == 2) {
        m_document.InvertShown();
    } else {
        m_document.ShowAll(index == 0);
    }
    Refresh();
}

}  // namespace quillon
