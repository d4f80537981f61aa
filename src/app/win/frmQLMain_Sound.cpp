#include <algorithm>
#include <string>
#include <utility>

#include "app/win/frmQLMain.h"
#include "base/StringIds.h"
#include "view/Readout.h"

namespace quillon {

void frmQLMain::MakeSound() {
    m_playback.onState = [this] { UpdateCommands(); };
    m_playback.onPosition = [this] { ShowPosition(); };
    m_playback.onError = [this](const std::u16string& text) { m_status.Tell(StatusBar::Topic::Sound, text); };
    m_playback.onScroll = [this](std::int32_t columns) { ViewChanged(m_view.ScrollBy(columns)); };
    m_playback.onFailed = [this](const std::exception& error) { Failed(error); };
    m_playback.Open();
}

void frmQLMain::SoundPlay(int index) {
    if (index == 2) return StopSound();
    const std::int16_t chosen = m_menuChannel != 0 ? m_menuChannel : m_document.CurrentChannel();
    m_playback.Play(index == 1 ? std::int16_t{0} : chosen);
}

void frmQLMain::ShowPosition() {
    const std::int32_t sample = m_playback.Position();
    if (sample == 0) {
        m_status.Retract(StatusBar::Topic::Sound);
    } else {
        // The outcome of an export, or an error, stays.
        m_status.Offer(StatusBar::Topic::Sound, m_services.Text(IDS_PLAYING) + u' ' +
                                                    PositionText(m_document.Block(), sample, u" ", m_global.format));
    }
    ShowPlayLine();
}

void frmQLMain::ShowPlayLine() {
    const std::int32_t sample = m_playback.Position();
    const RECT changed =
        m_graph.SetBand(GraphBand::Play, sample > 0 ? BandOf(m_view.Axis(), sample, sample) : std::nullopt);
    InvalidateBand(changed);
}

void frmQLMain::FillSoundCards(HMENU menu) {
    m_playback.LookForDevices();
    while (DeleteMenu(menu, 0, MF_BYPOSITION)) {
    }
    const int devices = std::min<int>(m_playback.DeviceCount(), kSoundCards);
    for (int device = 0; device < devices; ++device) {
        std::wstring name;
        for (const char16_t letter : m_playback.DeviceName(static_cast<std::int16_t>(device))) {
            name.append(letter == u'&' ? 2 : 1, static_cast<wchar_t>(letter));
        }
        AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(mnuSoundCard + device), name.c_str());
    }
    // A menu without an entry would not open.
    if (devices == 0) AppendMenuW(menu, MF_STRING, mnuSoundCard, Wide(m_services.Text(IDS_SOUNDCARD_0)).c_str());
}

void frmQLMain::SoundCard(int device) {
    m_playback.ChooseDevice(static_cast<std::int16_t>(device));
}

}  // namespace quillon
