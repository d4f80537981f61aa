#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "norvik/FlacBuilder.h"

namespace quillon::testing {

/// One signal of a record that is to be written.
struct WfdbTestSignal {
    std::string file;
    int format = 16;
    std::size_t perFrame = 1;
    std::vector<std::int32_t> samples{};
};

/// Samples in the order of the file as its format stores them. What of the last group holds no sample is cut off.
inline std::string WfdbBytes(int format, const std::vector<std::int32_t>& samples) {
    FileBytes bytes;
    const auto at = [&](std::size_t index) {
        return static_cast<std::uint32_t>(index < samples.size() ? samples[index] : 0);
    };
    const std::size_t group = format == 212 ? 2 : format == 310 || format == 311 ? 3 : 1;
    for (std::size_t i = 0; i < samples.size(); i += group) {
        const std::uint32_t a = at(i), b = at(i + 1), c = at(i + 2);
        switch (format) {
            case 16: bytes.Number(a & 0xFFFF, 2); break;
            case 24: bytes.Number(a & 0xFFFFFF, 3); break;
            case 32: bytes.Number(a, 4); break;
            case 61: bytes.Number((a & 0xFF) << 8 | (a >> 8 & 0xFF), 2); break;
            case 80: bytes.Number((a + 128) & 0xFF, 1); break;
            case 160: bytes.Number((a + 32768) & 0xFFFF, 2); break;
            case 212:
                bytes.Number(a & 0xFF, 1).Number((a >> 8 & 15) | (b >> 8 & 15) << 4, 1).Number(b & 0xFF, 1);
                break;
            case 310:
                bytes.Number((a & 1023) << 1 | (c & 31) << 11, 2).Number((b & 1023) << 1 | (c >> 5 & 31) << 11, 2);
                break;
            case 311: bytes.Number((a & 1023) | (b & 1023) << 10 | (c & 1023) << 20, 4); break;
            default: break;
        }
    }
    std::string file = bytes.Get();
    const std::size_t over = samples.size() % group;
    if (over == 1 && group > 1) file.resize(file.size() - (format == 212 ? 1 : 2));
    if (over == 2 && format == 311) file.resize(file.size() - 1);
    return file;
}

/// The file that holds these signals, which have `frames` frames.
inline std::string WfdbFile(const std::vector<const WfdbTestSignal*>& signals, std::size_t frames) {
    const int format = signals.front()->format;
    if (format > 500) {
        FlacBuilder flac{.channels = static_cast<unsigned>(signals.size()),
                         .depth = static_cast<unsigned>(format - 500)};
        for (const WfdbTestSignal* signal : signals)
            flac.samples.emplace_back(signal->samples.begin(), signal->samples.end());
        flac.Encode();
        return flac.File();
    }
    std::vector<std::int32_t> samples;
    std::string differences;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        for (const WfdbTestSignal* signal : signals) {
            for (std::size_t at = frame * signal->perFrame; at < (frame + 1) * signal->perFrame; ++at) {
                samples.push_back(signal->samples[at]);
                const std::int64_t before = at == 0 ? 7 : signal->samples[at - 1];
                differences += static_cast<char>(signal->samples[at] - before);
            }
        }
    }
    return format == 8 ? differences : WfdbBytes(format, samples);
}

/// An annotation file, word by word.
class WfdbAnnotationBytes {
  public:
    /// `note`: text behind it, as an AUX field.
    WfdbAnnotationBytes& Add(unsigned kind, unsigned interval, const std::string& note = {}) {
        m_bytes.Number(kind << 10 | interval, 2);
        if (note.empty()) return *this;
        m_bytes.Number(63U << 10 | note.size(), 2).Text(note);
        if (note.size() % 2 != 0) m_bytes.Number(0, 1);
        return *this;
    }
    WfdbAnnotationBytes& Skip(std::int64_t interval) {
        const auto bits = static_cast<std::uint32_t>(interval);
        m_bytes.Number(59U << 10, 2).Number(bits >> 16, 2).Number(bits & 0xFFFF, 2);
        return *this;
    }
    [[nodiscard]] std::string Get() const { return m_bytes.Get() + std::string(2, '\0'); }

  private:
    FileBytes m_bytes;
};

}  // namespace quillon::testing
