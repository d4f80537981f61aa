#include "app/win/MainMenu.h"

#include <algorithm>
#include <vector>

#include "app/Captions.h"
#include "app/GraphKeys.h"
#include "app/SpectrogramChoices.h"
#include "app/StringIds.h"
#include "app/win/PaletteBitmap.h"
#include "data/win/FileIdentity.h"
#include "view/AmplitudeScale.h"

namespace quillon {

namespace {

constexpr UINT kFirstMontage = 4;  ///< behind the references and a separator

std::wstring Escaped(const std::u16string& name) {
    return Wide(EscapedCaption(name));
}

/// Whether a recording on a disk of this computer is gone. Others are not looked for: that may take long.
bool IsMissing(const std::u16string& path) {
    const std::wstring wide = Wide(path);
    return !IsRemote(wide) && GetFileAttributesW(wide.c_str()) == INVALID_FILE_ATTRIBUTES;
}

}  // namespace

std::wstring MainMenu::CaptionOf(const MenuEntry& entry, int index) const {
    const std::u16string caption = entry.captionId == 0
                                       ? ComputedCaption(entry.id + index, m_view.RawCodes(), m_format.decimalSeparator)
                                       : m_services.Text(entry.captionId + index);
    const std::u16string accelerator = AcceleratorText(entry.id + index, m_services);
    return Wide(accelerator.empty() ? caption : caption + u'\t' + accelerator);
}

void MainMenu::Fill(HMENU menu, std::span<const MenuEntry> entries) {
    std::vector<HMENU> parents{menu};
    for (const MenuEntry& entry : entries) {
        parents.resize(static_cast<std::size_t>(entry.depth) + 1);
        const HMENU parent = parents.back();
        if (entry.kind == MenuEntry::Kind::Separator) {
            AppendMenuW(parent, MF_SEPARATOR, 0, nullptr);
        } else if (entry.kind == MenuEntry::Kind::Popup) {
            const HMENU popup = CreatePopupMenu();
            AppendMenuW(parent, MF_POPUP, reinterpret_cast<UINT_PTR>(popup),
                        Wide(m_services.Text(entry.captionId)).c_str());
            if (entry.captionId == IDS_MENU_XZOOM) m_zoomMenu = popup;
            if (entry.captionId == IDS_MENU_PAGE) m_pageMenu = popup;
            parents.push_back(popup);
        } else {
            for (int index = 0; index < entry.count; ++index) {
                AppendMenuW(parent, MF_STRING, static_cast<UINT_PTR>(entry.id + index),
                            CaptionOf(entry, index).c_str());
                if (entry.id == mnuPalette) AddPreview(parent, index);
            }
        }
    }
}

void MainMenu::AddPreview(HMENU menu, int palette) {
    m_previews.push_back(MakePaletteBitmap(static_cast<std::int16_t>(palette), m_density.Dpi()));
    MENUITEMINFOW item{};
    item.cbSize = sizeof item;
    item.fMask = MIIM_BITMAP;
    item.hbmpItem = m_previews.back().Get();
    SetMenuItemInfoW(menu, static_cast<UINT>(mnuPalette + palette), FALSE, &item);
}

HMENU MainMenu::Make() {
    m_menu.Reset(CreateMenu());
    Fill(m_menu.Get(), MenuTree());
    return m_menu.Get();
}

int MainMenu::ShowContextMenu(std::span<const MenuEntry> entries, HWND owner, POINT screen) {
    m_previews.clear();
    const Menu menu(CreatePopupMenu());
    Fill(menu.Get(), entries);
    return TrackPopupMenu(menu.Get(), TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD,
                          static_cast<int>(screen.x), static_cast<int>(screen.y), 0, owner, nullptr);
}

void MainMenu::ShowZooms(HWND owner, HWND control) const {
    RECT place{};
    GetWindowRect(control, &place);
    TrackPopupMenu(m_view.Axis().IsFree() ? m_pageMenu : m_zoomMenu, TPM_CENTERALIGN | TPM_BOTTOMALIGN,
                   (place.left + place.right) / 2, place.top, 0, owner, nullptr);
}

void MainMenu::ShowFolders(HWND owner, HWND control, const PathList& pathList) const {
    const auto& folders = pathList.Folders();
    const Menu menu(CreatePopupMenu());
    for (std::size_t at = 0; at < folders.size(); ++at)
        AppendMenuW(menu.Get(), MF_STRING, static_cast<UINT_PTR>(mnuPathList) + at, Escaped(folders[at]).c_str());
    if (folders.empty()) AppendMenuW(menu.Get(), MF_GRAYED, 0, Wide(m_services.Text(IDS_PATHLIST_EMPTY)).c_str());
    RECT place{};
    GetWindowRect(control, &place);
    TrackPopupMenu(menu.Get(), TPM_RIGHTALIGN | TPM_TOPALIGN, place.right, place.bottom, 0, owner, nullptr);
}

void MainMenu::FillSoundDevices(HMENU menu, std::span<const std::u16string> devices) const {
    while (DeleteMenu(menu, 0, MF_BYPOSITION)) {
    }
    const std::size_t count = std::min<std::size_t>(devices.size(), kSoundCards);
    for (std::size_t device = 0; device < count; ++device)
        AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(mnuSoundCard) + device, Escaped(devices[device]).c_str());
    // A menu without an entry would not open.
    if (count == 0) AppendMenuW(menu, MF_STRING, mnuSoundCard, Wide(m_services.Text(IDS_SOUNDCARD_0)).c_str());
}

void MainMenu::FillRecent(HMENU menu) const {
    while (GetMenuItemID(menu, 0) >= mnuRecent && GetMenuItemID(menu, 0) < mnuRecent + kRecentEntries)
        DeleteMenu(menu, 0, MF_BYPOSITION);
    const std::vector<std::u16string>& paths = m_recent.Paths();
    for (std::size_t at = 0; at < paths.size(); ++at)
        InsertMenuW(menu, static_cast<UINT>(at), MF_BYPOSITION | MF_STRING, static_cast<UINT_PTR>(mnuRecent) + at,
                    Wide(RecentCaption(at, paths[at])).c_str());
    if (paths.empty())
        InsertMenuW(menu, 0, MF_BYPOSITION | MF_STRING, mnuRecent, Wide(m_services.Text(IDS_RECENT_NONE)).c_str());
}

bool MainMenu::CanChoose(int id, const CommandState& state) const {
    if (!IsEnabled(id, state)) return false;
    const bool recent = id >= mnuRecent && id < mnuRecent + kRecentEntries;
    return !recent || !IsMissing(m_recent.Paths()[static_cast<std::size_t>(id - mnuRecent)]);
}

void MainMenu::FillReferences(HMENU menu, const ShownCommands& shown) const {
    const std::u16string title = shown.ChannelTitle();
    const std::wstring caption = title.empty() ? Wide(m_services.Text(IDS_REFERENCE_0 + 2)) : Escaped(title);
    ModifyMenuW(menu, mnuReference + 2, MF_BYCOMMAND | MF_STRING, mnuReference + 2, caption.c_str());
    while (GetMenuItemID(menu, kFirstMontage) >= mnuMontage &&
           GetMenuItemID(menu, kFirstMontage) < mnuMontage + ShownCommands::kMostMontages)
        DeleteMenu(menu, kFirstMontage, MF_BYPOSITION);
    const std::vector<Montage> montages = shown.Montages();
    for (std::size_t at = 0; at < montages.size(); ++at)
        InsertMenuW(menu, kFirstMontage + static_cast<UINT>(at), MF_BYPOSITION | MF_STRING,
                    static_cast<UINT_PTR>(mnuMontage) + at, Escaped(montages[at].name).c_str());
    if (montages.empty())
        InsertMenuW(menu, kFirstMontage, MF_BYPOSITION | MF_STRING, mnuMontage,
                    Wide(m_services.Text(IDS_MONTAGE_NONE)).c_str());
}

void MainMenu::Open(HMENU menu, Playback& playback, const ShownCommands& shown,
                    const std::function<CommandState()>& present) const {
    const UINT first = GetMenuItemID(menu, 0);
    if (first == mnuSoundCard || first == mnuSoundPlay) playback.LookForDevices();
    if (first == mnuSoundCard) FillSoundDevices(menu, playback.DeviceNames());
    if (first == mnuReference) FillReferences(menu, shown);
    if (first == mnuRecent) FillRecent(menu);
    const CommandState state = present();
    const int count = GetMenuItemCount(menu);
    for (int position = 0; position < count; ++position) {
        const UINT id = GetMenuItemID(menu, position);
        if (id == 0 || id == static_cast<UINT>(-1)) continue;
        if (id >= mnuScaleY && id < mnuScaleY + AmplitudeScale::kScaleCount) {
            // The captions depend on the option values or codes.
            const std::u16string caption =
                ComputedCaption(static_cast<int>(id), m_view.RawCodes(), m_format.decimalSeparator);
            ModifyMenuW(menu, id, MF_BYCOMMAND | MF_STRING, id, Wide(caption).c_str());
        }
        if (const auto choice = FilterChoiceOf(static_cast<int>(id))) {
            // The unit of frequencies is a word of the language, and a choice that cannot be says why.
            const std::u16string reason = state.hasGroup ? shown.RefusalOfChoice(*choice) : std::u16string();
            const std::u16string caption = shown.Caption(*choice) + (reason.empty() ? reason : u"  (" + reason + u')');
            ModifyMenuW(menu, id, MF_BYCOMMAND | MF_STRING, id, Wide(caption).c_str());
        }
        if (const auto choice = SpectrogramChoiceOf(static_cast<int>(id), state.sampleRate);
            choice && choice->field != SpectrogramField::Colors) {
            const std::u16string caption = quillon::CaptionOf(*choice, m_services, m_format.decimalSeparator);
            ModifyMenuW(menu, id, MF_BYCOMMAND | MF_STRING, id, Wide(caption).c_str());
        }
        const bool enabled = CanChoose(static_cast<int>(id), state);
        const bool checked = IsChecked(static_cast<int>(id), state);
        EnableMenuItem(menu, id, enabled ? MF_ENABLED : MF_GRAYED);
        CheckMenuItem(menu, id, checked ? MF_CHECKED : MF_UNCHECKED);
    }
}

}  // namespace quillon
