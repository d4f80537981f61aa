#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace quillon {

/// Events of a sound output. Every event comes on the thread that made the output, while that thread handles
/// messages, and never from inside an operation of the output; so an event may call any operation. It must not throw
/// and must not destroy the output. None comes after the output is destroyed. All four must be set.
struct SoundOutputEvents {
    /// The device takes the samples written first.
    std::function<void()> started;
    /// Samples per channel heard since the start of this playback, 0 .. the number written.
    std::function<void(std::int64_t played)> writeProgress;
    /// The device needs another buffer soon. A listener that has one calls Write; when it has none, what was written is
    /// played to its end. Comes once per buffer, at the start several times in a row.
    std::function<void()> moreWanted;
    /// The playback is over: all was played, Stop was called, or the device failed (then ErrorText says why). Comes
    /// once per playback; not at all when another one was started before it could come.
    std::function<void()> stopped;
};

/// The contract between the viewer and the sound library: plays 16-bit samples through one of the system's devices.
/// Operations do not throw, but for Write and memory that has run out.
class SoundOutput {
  public:
    virtual ~SoundOutput() = default;
    /// Counts again on every call, as devices may be added or removed.
    [[nodiscard]] virtual std::int16_t DeviceCount() const = 0;
    /// Of device 0 .. DeviceCount-1; empty for any other.
    [[nodiscard]] virtual std::u16string DeviceName(std::int16_t index) const = 0;
    /// The device that the next Open takes; 0 at first.
    [[nodiscard]] virtual std::int16_t Device() const = 0;
    /// An index without a device changes nothing.
    virtual void PutDevice(std::int16_t index) = 0;
    /// Why Open refused or the playback broke off, in the user's language where it is a usual one; empty when neither
    /// happened since the last Open or Stop.
    [[nodiscard]] virtual std::u16string ErrorText() const = 0;
    /// Samples per second and channel above which Open refuses.
    [[nodiscard]] virtual std::int32_t MaximumRate() const = 0;
    /// Ends the playback at once and frees the device. Does nothing when none is open.
    virtual void Stop() = 0;
    /// Takes the device for samples of this shape, stopping what it played; false when it refuses them or is not there
    /// any more.
    [[nodiscard]] virtual bool Open(std::int16_t channelCount, std::int32_t rate) = 0;
    /// Queues `count` frames (one sample of every channel each), which are copied. The first call after Open starts the
    /// playback. A device that fails meanwhile ends it, as `stopped` tells.
    virtual void Write(const std::int16_t* samples, std::int32_t count) = 0;
};

/// Makes the sound output; may throw.
using SoundOutputFactory = std::function<std::unique_ptr<SoundOutput>(SoundOutputEvents events)>;

}  // namespace quillon
