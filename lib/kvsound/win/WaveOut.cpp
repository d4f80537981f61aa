#include "kvsound/win/WaveOut.h"

#include "base/win/MessageWindow.h"
// After windows.h, on which they depend.
#include <mmsystem.h>

#include <mmreg.h>

#include <algorithm>
#include <array>
#include <deque>
#include <limits>
#include <system_error>
#include <utility>
#include <vector>

#include "base/Bilingual.h"
#include "kvsound/private/PlayPosition.h"

namespace quillon {

namespace {

/// The highest rate that sound cards commonly take. The system has no answer of its own: it names the same formats for
/// every device.
constexpr std::int32_t kMaximumRate = 192000;

/// More is asked for when less than a second, or fewer buffers than this, are on their way: enough for a window that is
/// busy drawing.
constexpr std::size_t kFewestBuffers = 3;

constexpr UINT kStarted = WM_APP;  ///< wParam: number of the playback
constexpr UINT kStopped = WM_APP + 1;
constexpr UINT_PTR kProgressTimer = 1;
constexpr UINT kProgressInterval = 30;  ///< ms

/// KSDATAFORMAT_SUBTYPE_PCM, which would need another library to link.
constexpr GUID kPcm = {WAVE_FORMAT_PCM, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xaa, 0x00, 0x38, 0x9b, 0x71}};

/// Errors of a device that was present before. The system's texts exist in its own language only.
Bilingual CommonError(MMRESULT result) {
    switch (result) {
        case MMSYSERR_BADDEVICEID:
        case MMSYSERR_NODRIVER: return Say(u"there is no such sound device", u"такого звукового устройства нет");
        case MMSYSERR_ALLOCATED:
            return Say(u"the sound device is used by another program", u"звуковое устройство занято другой программой");
        case MMSYSERR_NOMEM: return Say(u"there is not enough memory", u"не хватает памяти");
        case WAVERR_BADFORMAT:
            return Say(u"the sound device cannot play this rate or so many channels",
                       u"звуковое устройство не воспроизводит такую частоту или столько каналов");
        default: return {};
    }
}

std::u16string ErrorTextOf(MMRESULT result, Language language) {
    const Bilingual common = CommonError(result);
    if (!common.english.empty()) return common.In(language);
    std::array<wchar_t, MAXERRORLENGTH> text{};
    if (::waveOutGetErrorTextW(result, text.data(), static_cast<UINT>(text.size())) != MMSYSERR_NOERROR) return {};
    std::u16string line;
    for (const wchar_t* at = text.data(); *at != L'\0'; ++at) line += *at < L' ' ? u' ' : static_cast<char16_t>(*at);
    line.erase(line.find_last_not_of(u' ') + 1);
    return line;
}

/// The format of 16-bit samples. Without speakers assigned (mask 0) the channels go out in their order; the plain
/// format means the first loudspeakers of the usual arrangement.
WAVEFORMATEXTENSIBLE FormatOf(std::int16_t channelCount, std::int32_t rate, bool extensible) {
    WAVEFORMATEXTENSIBLE format{};
    WAVEFORMATEX& plain = format.Format;
    plain.wFormatTag = extensible ? WORD{WAVE_FORMAT_EXTENSIBLE} : WORD{WAVE_FORMAT_PCM};
    plain.nChannels = static_cast<WORD>(channelCount);
    plain.nSamplesPerSec = static_cast<DWORD>(rate);
    plain.wBitsPerSample = 16;
    plain.nBlockAlign = static_cast<WORD>(channelCount * 2);
    plain.nAvgBytesPerSec = plain.nSamplesPerSec * plain.nBlockAlign;
    if (extensible) {
        plain.cbSize = sizeof(WAVEFORMATEXTENSIBLE) - sizeof(WAVEFORMATEX);
        format.Samples.wValidBitsPerSample = 16;
        format.SubFormat = kPcm;
    }
    return format;
}

/// One opened device with the buffers handed to it, which are taken back when it ends.
class WaveDevice {
  public:
    WaveDevice() = default;
    ~WaveDevice() { Close(); }
    WaveDevice(const WaveDevice&) = delete;
    WaveDevice& operator=(const WaveDevice&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_device != nullptr; }
    [[nodiscard]] std::int64_t Written() const { return m_written; }
    [[nodiscard]] bool HasBuffers() const { return !m_queued.empty(); }
    [[nodiscard]] bool NeedsMore() const { return m_queued.size() < kFewestBuffers || m_written - m_done < m_rate; }

    /// The device is silent until Run. The window gets a message for every buffer returned.
    MMRESULT Open(UINT index, std::int16_t channelCount, std::int32_t rate, HWND window) {
        // Two channels are left and right for certain.
        MMRESULT result = WAVERR_BADFORMAT;
        if (channelCount > 2) result = OpenAs(index, FormatOf(channelCount, rate, true), window);
        if (result != MMSYSERR_NOERROR) result = OpenAs(index, FormatOf(channelCount, rate, false), window);
        if (result != MMSYSERR_NOERROR) return result;
        m_frameSize = static_cast<std::size_t>(channelCount) * sizeof(std::int16_t);
        m_rate = rate;
        ::waveOutPause(m_device);
        return result;
    }

    MMRESULT Run() { return ::waveOutRestart(m_device); }

    void Close() {
        if (m_device == nullptr) return;
        ::waveOutReset(m_device);
        for (auto& buffer : m_queued) {
            // Memory that a faulty driver still holds must not be freed.
            if (Unprepare(*buffer) == WAVERR_STILLPLAYING) static_cast<void>(buffer.release());
        }
        ::waveOutClose(m_device);
        m_device = nullptr;
        m_queued.clear();
        m_free.clear();
        m_written = m_done = 0;
        m_position = {};
    }

    MMRESULT Write(const std::int16_t* samples, std::int32_t count) {
        std::unique_ptr<Buffer> buffer = TakeFree();
        buffer->samples.assign(samples, samples + static_cast<std::size_t>(count) * m_frameSize / sizeof *samples);
        buffer->frames = count;
        buffer->header = {};
        buffer->header.lpData = reinterpret_cast<LPSTR>(buffer->samples.data());
        buffer->header.dwBufferLength = static_cast<DWORD>(buffer->samples.size() * sizeof *samples);
        MMRESULT result = ::waveOutPrepareHeader(m_device, &buffer->header, sizeof buffer->header);
        if (result != MMSYSERR_NOERROR) return result;
        result = ::waveOutWrite(m_device, &buffer->header, sizeof buffer->header);
        if (result != MMSYSERR_NOERROR) {
            Unprepare(*buffer);
            return result;
        }
        m_written += count;
        m_queued.push_back(std::move(buffer));
        return result;
    }

    /// Takes back what was played. The flag is asked rather than the message that a buffer came back: a message may be
    /// one that was under way when the device was closed and opened again.
    void TakeBack() {
        while (!m_queued.empty()) {
            // The system sets it on a thread of its own.
            const volatile DWORD& flags = m_queued.front()->header.dwFlags;
            if ((flags & WHDR_DONE) == 0) return;
            std::unique_ptr<Buffer> buffer = std::move(m_queued.front());
            m_queued.pop_front();
            Unprepare(*buffer);
            m_done += buffer->frames;
            m_free.push_back(std::move(buffer));
        }
    }

    /// Frames heard, 0 .. Written.
    MMRESULT Played(std::int64_t& frames) {
        MMTIME time{};
        time.wType = TIME_SAMPLES;
        const MMRESULT result = ::waveOutGetPosition(m_device, &time, sizeof time);
        if (result != MMSYSERR_NOERROR) return result;
        // A device answers in bytes when it does not count samples.
        switch (time.wType) {
            case TIME_SAMPLES: frames = m_position.Advance(time.u.sample); break;
            case TIME_BYTES: frames = m_position.Advance(time.u.cb) / static_cast<std::int64_t>(m_frameSize); break;
            default: frames = m_done; break;
        }
        frames = std::min(frames, m_written);
        return result;
    }

  private:
    struct Buffer {
        WAVEHDR header{};
        std::vector<std::int16_t> samples;
        std::int32_t frames = 0;
    };

    MMRESULT OpenAs(UINT index, const WAVEFORMATEXTENSIBLE& format, HWND window) {
        const MMRESULT result =
            ::waveOutOpen(&m_device, index, &format.Format, reinterpret_cast<DWORD_PTR>(window), 0, CALLBACK_WINDOW);
        if (result != MMSYSERR_NOERROR) m_device = nullptr;
        return result;
    }

    std::unique_ptr<Buffer> TakeFree() {
        if (m_free.empty()) return std::make_unique<Buffer>();
        std::unique_ptr<Buffer> buffer = std::move(m_free.back());
        m_free.pop_back();
        return buffer;
    }

    MMRESULT Unprepare(Buffer& buffer) {
        return ::waveOutUnprepareHeader(m_device, &buffer.header, sizeof buffer.header);
    }

    HWAVEOUT m_device = nullptr;
    std::size_t m_frameSize = 0;  ///< bytes
    std::int32_t m_rate = 0;
    std::deque<std::unique_ptr<Buffer>> m_queued;  ///< in the order written, which is that of their return
    std::vector<std::unique_ptr<Buffer>> m_free;
    std::int64_t m_written = 0;  ///< frames
    std::int64_t m_done = 0;     ///< frames of buffers that came back
    PlayPosition m_position;     ///< in what the device counts
};

/// The device's messages, the timer of the progress and the events that must not come from inside an operation all go
/// through its window.
class WaveOut final : public SoundOutput {
  public:
    WaveOut(SoundOutputEvents events, Language language)
        : m_events(std::move(events)),
          m_language(language),
          m_window([this](UINT message, WPARAM wParam) { return OnMessage(message, wParam); }) {
        if (m_window.Handle() == nullptr) {
            throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), "Sound window");
        }
    }

    [[nodiscard]] std::int16_t DeviceCount() const override {
        return static_cast<std::int16_t>(
            std::min<UINT>(::waveOutGetNumDevs(), std::numeric_limits<std::int16_t>::max()));
    }

    [[nodiscard]] std::u16string DeviceName(std::int16_t index) const override {
        WAVEOUTCAPSW abilities{};
        if (index < 0 || ::waveOutGetDevCapsW(static_cast<UINT_PTR>(index), &abilities, sizeof abilities) != 0)
            return {};
        const std::wstring name = abilities.szPname;
        return {name.begin(), name.end()};
    }

    [[nodiscard]] std::int16_t Device() const override { return m_index; }

    void PutDevice(std::int16_t index) override {
        if (index >= 0 && index < DeviceCount()) m_index = index;
    }

    [[nodiscard]] std::u16string ErrorText() const override { return m_errorText; }

    [[nodiscard]] std::int32_t MaximumRate() const override { return kMaximumRate; }

    void Stop() override {
        m_errorText.clear();
        End();
    }

    [[nodiscard]] bool Open(std::int16_t channelCount, std::int32_t rate) override {
        Stop();
        // Not left to the system: some sound systems end the process at a rate beyond their limits.
        const bool sane = channelCount > 0 && rate > 0 && rate <= kMaximumRate;
        const MMRESULT result = m_index >= DeviceCount() ? MMRESULT{MMSYSERR_BADDEVICEID}
                                : sane
                                    ? m_device.Open(static_cast<UINT>(m_index), channelCount, rate, m_window.Handle())
                                    : MMRESULT{WAVERR_BADFORMAT};
        if (result != MMSYSERR_NOERROR) m_errorText = ErrorTextOf(result, m_language);
        return result == MMSYSERR_NOERROR;
    }

    void Write(const std::int16_t* samples, std::int32_t count) override {
        if (!m_device.IsOpen() || count <= 0) return;
        const bool first = m_device.Written() == 0;
        if (first) {
            ++m_playback;
            m_begun = true;
        }
        const MMRESULT result = m_device.Write(samples, count);
        if (result != MMSYSERR_NOERROR) {
            Break(result);
        } else if (first) {
            ::PostMessageW(m_window.Handle(), kStarted, m_playback, 0);
        }
    }

  private:
    /// Frees the device; the event comes when the window handles its message.
    void End() {
        ::KillTimer(m_window.Handle(), kProgressTimer);
        m_device.Close();
        m_running = false;
        if (std::exchange(m_begun, false)) ::PostMessageW(m_window.Handle(), kStopped, m_playback, 0);
    }

    void Break(MMRESULT result) {
        End();
        m_errorText = ErrorTextOf(result, m_language);
    }

    // Every event may end this playback and start another: the function that called it must then do no more.
    [[nodiscard]] bool IsCurrent(WPARAM playback) const { return m_begun && playback == m_playback; }

    void OnStarted(WPARAM playback) {
        if (!IsCurrent(playback)) return;
        m_events.started();
        if (!IsCurrent(playback) || !Refill(playback)) return;
        const MMRESULT result = m_device.Run();
        if (result != MMSYSERR_NOERROR) return Break(result);
        m_running = true;
        ::SetTimer(m_window.Handle(), kProgressTimer, kProgressInterval, nullptr);
    }

    /// False when the playback is over.
    bool Refill(WPARAM playback) {
        while (m_device.NeedsMore()) {
            const std::int64_t before = m_device.Written();
            m_events.moreWanted();
            if (!IsCurrent(playback)) return false;
            if (m_device.Written() == before) break;
        }
        return true;
    }

    void OnBufferBack() {
        if (!m_running) return;
        const WPARAM playback = m_playback;
        m_device.TakeBack();
        if (!Refill(playback) || m_device.HasBuffers()) return;
        m_events.writeProgress(m_device.Written());
        if (IsCurrent(playback)) End();
    }

    void OnTimer() {
        // Buffers are not left to their messages alone, which are lost when the queue is full.
        OnBufferBack();
        if (!m_running) return;
        std::int64_t played = 0;
        const MMRESULT result = m_device.Played(played);
        if (result != MMSYSERR_NOERROR) return Break(result);
        m_events.writeProgress(played);
    }

    bool OnMessage(UINT message, WPARAM wParam) {
        switch (message) {
            case kStarted: OnStarted(wParam); return true;
            case kStopped:
                if (wParam == m_playback) m_events.stopped();
                return true;
            case MM_WOM_DONE: OnBufferBack(); return true;
            case WM_TIMER: OnTimer(); return true;
            default: return false;
        }
    }

    SoundOutputEvents m_events;
    Language m_language;
    MessageWindow m_window;
    WaveDevice m_device;  ///< closed before the window goes
    std::int16_t m_index = 0;
    std::u16string m_errorText;
    WPARAM m_playback = 0;   ///< number of the last playback, to recognise late messages of an earlier one
    bool m_begun = false;    ///< from the first Write to the end
    bool m_running = false;  ///< the device plays
};

}  // namespace

std::unique_ptr<SoundOutput> MakeSoundOutput(SoundOutputEvents events, Language language) {
    return std::make_unique<WaveOut>(std::move(events), language);
}

}  // namespace quillon
