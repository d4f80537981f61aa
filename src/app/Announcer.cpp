#include "app/Announcer.h"

namespace quillon {

void Announcer::Attach(const TimerFactory& makeTimer) {
    m_timer = makeTimer([this] { OnPauseEnd(); });
    m_timer->PutInterval(kPause);
}

void Announcer::Tell(const std::u16string& text) {
    m_text = text;
    if (m_timer && !m_pausing && m_text != m_announced) Announce();
}

void Announcer::Announce() {
    m_announced = m_text;
    m_pausing = true;
    m_timer->PutEnabled(true);
    onAnnounce(m_announced);
}

void Announcer::OnPauseEnd() {
    m_pausing = m_text != m_announced;
    m_pausing ? Announce() : m_timer->PutEnabled(false);
}

std::u16string SpokenText(const std::u16string& text) {
    std::u16string spoken;
    for (const char16_t letter : text) {
        if (letter == u'\n') continue;
        // A cell or line without text adds nothing.
        if (letter == u'\r') {
            if (!spoken.empty() && spoken.back() != u' ') spoken += u", ";
        } else if (letter != u'\t') {
            spoken += letter;
        } else if (!spoken.empty() && spoken.back() != u' ') {
            spoken += u' ';
        }
    }
    while (!spoken.empty() && (spoken.back() == u' ' || spoken.back() == u',')) spoken.pop_back();
    return spoken;
}

}  // namespace quillon
