#include <algorithm>
#include <string>
#include <utility>

#include "app/win/frmQLMain.h"
#include "base/StringIds.h"
#include "view/Readout.h"

namespace quillon {

void frmQLMain::MakeSound() {
    m_sound = std::make_unique<QLSound>(m_document.Block(), m_services, m_global.makeSoundOutput);
    // No event may throw.
    const auto guarded = [this](auto handle) {
        try {
            handle();
        } catch (const std::exception& error) {
            Failed(error);
        }
    };
    m_sound->onStarted = [this, guarded] { guarded([this] { objSound_Started(); }); };
    m_sound->onStopped = [this, guarded] { guarded([this] { objSound_Stopped(); }); };
    m_sound->onPlayProgress = [this, guarded](std::int32_t sample) {
        guarded([this, sample] { objSound_PlayProgress(sample); });
    };
    KeepSoundState();
}

void frmQLMain::KeepSoundState() {
    m_global.sound.devices = m_sound->DeviceCount();
    m_global.sound.device = m_sound->Device();
    m_global.sound.playing = m_sound->Playing();
    UpdateCommands();
}

void frmQLMain::SoundPlay(int index) {
    if (index == 2) return StopSound();
    // Without a selection the part of the block that is seen is heard.
    const VisibleRange visible = m_view.Axis().Visible();
    const SampleRange range =
        m_view.Selected().active ? ExportRange() : SampleRange{visible.first, visible.last - visible.first + 1};
    const std::int16_t chosen = m_menuChannel != 0 ? m_menuChannel : m_document.CurrentChannel();
    m_global.sound.position = 0;
    m_followsSound = false;
    ShowPlayLine();
    m_sound->Play(index == 1 ? std::int16_t{0} : chosen, range.first, range.count);
    KeepSoundState();
    if (m_sound->Playing()) return;
    if (!m_sound->ErrorText().empty()) TellOfSound(m_sound->ErrorText());
}

void frmQLMain::ClearSoundStatus() {
    if (!m_soundTold.empty() && m_services.Status() == m_soundTold) m_services.SetStatus({});
    m_soundTold.clear();
}

void frmQLMain::TellOfSound(const std::u16string& text) {
    m_soundTold = text;
    m_services.SetStatus(text);
}

void frmQLMain::StopSound() {
    if (!m_sound) return;
    m_sound->Stop();
    EndPlayback();
}

void frmQLMain::EndPlayback() {
    m_global.sound.position = 0;
    ClearSoundStatus();
    ShowPlayLine();
    KeepSoundState();
}

void frmQLMain::objSound_Started() {
    KeepSoundState();
}

void frmQLMain::objSound_Stopped() {
    const std::u16string error = m_sound->ErrorText();
    EndPlayback();
    if (!error.empty()) TellOfSound(error);
}

void frmQLMain::objSound_PlayProgress(std::int32_t sample) {
    m_global.sound.position = sample;
    // The outcome of an export, or an error, stays.
    const std::u16string& status = m_services.Status();
    if (status.empty() || status == m_soundTold)
        TellOfSound(m_services.Text(IDS_PLAYING) + u' ' +
                    PositionText(m_document.Block(), sample, u" ", m_global.format));
    ShowPlayLine();
    if (m_graph.Band(GraphBand::Play)) m_followsSound = true;
    // The line went over the edge of the view, or a zoom left it there.
    else if (m_followsSound)
        ViewChanged(m_view.ScrollBy((sample - 1) / m_view.Axis().SamplesPerPixel() - m_view.Axis().FirstColumn()));
}

void frmQLMain::ShowPlayLine() {
    const std::int32_t sample = m_global.sound.position;
    const RECT changed =
        m_graph.SetBand(GraphBand::Play, sample > 0 ? BandOf(m_view.Axis(), sample, sample) : std::nullopt);
    InvalidateBand(changed);
}

void frmQLMain::LookForSound() {
    if (!m_sound) return;
    m_sound->Refresh();
    KeepSoundState();
}

void frmQLMain::FillSoundCards(HMENU menu) {
    LookForSound();
    while (DeleteMenu(menu, 0, MF_BYPOSITION)) {
    }
    const int devices = std::min<int>(m_global.sound.devices, kSoundCards);
    for (int device = 0; device < devices; ++device) {
        std::wstring name;
        for (const char16_t letter : m_sound->DeviceName(static_cast<std::int16_t>(device))) {
            name.append(letter == u'&' ? 2 : 1, static_cast<wchar_t>(letter));
        }
        AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(mnuSoundCard + device), name.c_str());
    }
    // A menu without an entry would not open.
    if (devices == 0) AppendMenuW(menu, MF_STRING, mnuSoundCard, Wide(m_services.Text(IDS_SOUNDCARD_0)).c_str());
}

void frmQLMain::SoundCard(int device) {
    m_sound->PutDevice(static_cast<std::int16_t>(device));
    KeepSoundState();
}

}  // namespace quillon
