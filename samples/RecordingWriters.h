#pragma once

#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Headers of the sample recordings, field by field, little-endian.
namespace quillon::samples {

class Bytes {
  public:
    Bytes& U16(std::uint32_t number) { return Number(number, 2); }
    Bytes& U32(std::uint32_t number) { return Number(number, 4); }
    Bytes& U64(std::uint64_t number) { return Number(number, 8); }
    Bytes& Float(float number) { return U32(std::bit_cast<std::uint32_t>(number)); }
    Bytes& Double(double number) { return U64(std::bit_cast<std::uint64_t>(number)); }
    /// The lowest `size` bytes.
    Bytes& Number(std::uint64_t number, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) m_bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
        return *this;
    }
    /// The same with the highest of them first.
    Bytes& Big(std::uint64_t number, std::size_t size) {
        for (std::size_t i = size; i > 0; --i) m_bytes += static_cast<char>(number >> (8 * (i - 1)) & 0xFFU);
        return *this;
    }
    Bytes& Zeros(std::size_t size) { return Text("", size, '\0'); }
    /// Cut or filled up with `fill` to `size` bytes.
    Bytes& Text(std::string_view text, std::size_t size, char fill = '\0') {
        m_bytes += text.substr(0, size);
        m_bytes.append(size - std::min(size, text.size()), fill);
        return *this;
    }
    Bytes& Text(std::string_view text) { return Text(text, text.size(), ' '); }
    Bytes& Codes(const std::vector<std::int16_t>& codes) {
        for (const std::int16_t code : codes) U16(static_cast<std::uint16_t>(code));
        return *this;
    }
    Bytes& Add(const Bytes& other) { return Text(other.m_bytes); }
    /// A chunk of a RIFF file, padded to an even size.
    Bytes& Chunk(std::string_view id, const Bytes& content) {
        const std::size_t size = content.Size();
        return Text(id).U32(static_cast<std::uint32_t>(size)).Text(content.m_bytes, size + size % 2);
    }
    /// Overwrites what is there.
    Bytes& Patch(std::size_t offset, std::uint64_t number, std::size_t size) {
        m_bytes.replace(offset, size, Bytes().Number(number, size).m_bytes);
        return *this;
    }
    Bytes& CutTo(std::size_t size) {
        m_bytes.resize(size);
        return *this;
    }
    [[nodiscard]] const std::string& Get() const { return m_bytes; }
    [[nodiscard]] std::size_t Size() const { return m_bytes.size(); }

  private:
    std::string m_bytes;
};

struct BinChannel {
    std::string name;
    std::string unit;
    float scale = 1.0F;
    float offset = 0.0F;
};

/// 4 April 2011 12:57:02, the start of every sample recording. A Monday.
inline std::string BinHeader(float rate, std::string_view device, const std::vector<BinChannel>& channels,
                             std::uint32_t frames) {
    Bytes bytes;
    bytes.Text("ABIN").U16(3).U16(3);
    for (const std::uint32_t part : {2011U, 4U, 1U, 4U, 12U, 57U, 2U, 0U}) bytes.U16(part);
    bytes.Float(rate).U32(0).U16(static_cast<std::uint32_t>(channels.size())).Text("", 30, '\0');
    bytes.Text(device, 16, '\0').Text("", 48, '\0');
    std::uint32_t input = 0;
    for (const BinChannel& channel : channels) {
        bytes.Text("ADCh").U32(input++).Text(channel.name, 32, '\0').Text(channel.unit, 24, '\0');
        bytes.Float(channel.scale).Float(channel.offset).Text("", 8, '\0');
    }
    bytes.Text("data").U32(static_cast<std::uint32_t>(2 * channels.size() * frames));
    return bytes.Get();
}

struct EdfSignal {
    std::string label;
    std::string transducer;
    std::string unit;
    int physicalMinimum = -1;
    int physicalMaximum = 1;
    std::string filter;
    std::size_t samplesPerRecord = 1;
};

inline const std::string kEdfAnnotations = "EDF Annotations";

/// EDF+C of records of one second; digital limits are all 16 bits. The annotation signal goes last.
inline std::string EdfHeader(const std::vector<EdfSignal>& signals, std::size_t records) {
    Bytes bytes;
    const auto number = [](auto value) { return std::to_string(value); };
    bytes.Text("0", 8, ' ').Text("X X X X", 80, ' ').Text("Startdate 04-APR-2011 X X X", 80, ' ');
    bytes.Text("04.04.11").Text("12.57.02").Text(number((signals.size() + 1) * 256), 8, ' ');
    bytes.Text("EDF+C", 44, ' ').Text(number(records), 8, ' ').Text("1", 8, ' ').Text(number(signals.size()), 4, ' ');
    const auto field = [&](std::size_t size, auto text) {
        for (const EdfSignal& signal : signals) bytes.Text(text(signal), size, ' ');
    };
    field(16, [](const EdfSignal& signal) { return signal.label; });
    field(80, [](const EdfSignal& signal) { return signal.transducer; });
    field(8, [](const EdfSignal& signal) { return signal.unit; });
    field(8, [&](const EdfSignal& signal) { return number(signal.physicalMinimum); });
    field(8, [&](const EdfSignal& signal) { return number(signal.physicalMaximum); });
    field(8, [](const EdfSignal&) { return std::string("-32768"); });
    field(8, [](const EdfSignal&) { return std::string("32767"); });
    field(80, [](const EdfSignal& signal) { return signal.filter; });
    field(8, [&](const EdfSignal& signal) { return number(signal.samplesPerRecord); });
    field(32, [](const EdfSignal&) { return std::string(); });
    return bytes.Get();
}

/// An onset or its text of an annotation list: "+12.5".
inline std::string EdfOnset(double seconds) {
    char text[32] = "+";
    const auto result = std::to_chars(text + 1, text + sizeof text, seconds, std::chars_format::fixed);
    return {text, result.ptr};
}

struct WaveCue {
    std::uint32_t position = 0;
    std::string text;
};

/// A 16-bit WAVE file with labelled cue points.
inline std::string WaveFile(std::uint32_t channels, std::uint32_t rate, const std::vector<std::int16_t>& frames,
                            const std::vector<WaveCue>& cues) {
    Bytes format;
    format.U16(1).U16(channels).U32(rate).U32(rate * channels * 2).U16(channels * 2).U16(16);
    Bytes points;
    points.U32(static_cast<std::uint32_t>(cues.size()));
    Bytes labels;
    labels.Text("adtl");
    for (std::uint32_t i = 0; i < cues.size(); ++i) {
        points.U32(i + 1).U32(cues[i].position).Text("data").U32(0).U32(0).U32(cues[i].position);
        Bytes label;
        label.U32(i + 1).Text(cues[i].text).Text("", 1, '\0');
        labels.Chunk("labl", label);
    }
    Bytes content;
    content.Text("WAVE").Chunk("fmt ", format).Chunk("data", Bytes().Codes(frames));
    content.Chunk("cue ", points).Chunk("LIST", labels);
    return Bytes().Chunk("RIFF", content).Get();
}

}  // namespace quillon::samples
