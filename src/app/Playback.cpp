#include "app/Playback.h"

namespace quillon {

namespace {

template <typename Event, typename... Arguments>
void Tell(const Event& event, Arguments&&... arguments) {
    if (event) event(std::forward<Arguments>(arguments)...);
}

}  // namespace

void Playback::Open() {
    m_sound = std::make_unique<QLSound>(m_document.Block(), m_services, m_makeOutput);
    // QLSound's events must not throw.
    const auto guarded = [this](auto handle) {
        try {
            handle();
        } catch (const std::exception& error) {
            Tell(onFailed, error);
        }
    };
    m_sound->onStarted = [this, guarded] { guarded([this] { Tell(onState); }); };
    m_sound->onStopped = [this, guarded] { guarded([this] { OnStopped(); }); };
    m_sound->onPlayProgress = [this, guarded](std::int32_t sample) { guarded([this, sample] { OnProgress(sample); }); };
    Tell(onState);
}

void Playback::LookForDevices() {
    if (!m_sound) return;
    m_sound->Refresh();
    Tell(onState);
}

std::vector<std::u16string> Playback::DeviceNames() const {
    std::vector<std::u16string> names;
    for (std::int16_t device = 0; device < DeviceCount(); ++device) names.push_back(m_sound->DeviceName(device));
    return names;
}

void Playback::ChooseDevice(std::int16_t index) {
    if (!m_sound) return;
    m_sound->PutDevice(index);
    Tell(onState);
}

void Playback::Play(std::int16_t channel) {
    if (!m_sound) return;
    const Selection& selection = m_view.Selected();
    m_follows = false;
    SetPosition(0);
    const SampleSpan samples = selection.active ? selection.Samples() : m_view.Axis().Visible();
    m_sound->Play(channel, samples.first + 1, samples.count);
    Tell(onState);
    if (!m_sound->Playing() && !m_sound->ErrorText().empty()) Tell(onError, m_sound->ErrorText());
}

void Playback::Stop() {
    if (!m_sound) return;
    m_sound->Stop();
    End();
}

void Playback::OnStopped() {
    const std::u16string error = m_sound->ErrorText();
    End();
    if (!error.empty()) Tell(onError, error);
}

void Playback::End() {
    SetPosition(0);
    Tell(onState);
}

void Playback::SetPosition(std::int32_t sample) {
    m_position = sample;
    Tell(onPosition);
}

bool Playback::IsInView() const {
    return m_position > 0 && BandOf(m_view.Axis(), {m_position - 1, 1}).has_value();
}

void Playback::OnProgress(std::int32_t sample) {
    SetPosition(sample);
    if (IsInView()) {
        m_follows = true;
    } else if (m_follows) {
        // The playback line passed the edge of the view, or a zoom put it outside.
        Tell(onScroll, m_view.Axis().ColumnOf(sample - 1));
    }
}

void Playback::ViewChanged(const ViewChange& change) {
    if (change.newPlace) m_follows = IsInView();
}

}  // namespace quillon
