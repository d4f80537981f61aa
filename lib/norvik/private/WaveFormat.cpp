#include "norvik/private/WaveFormat.h"

#include "base/LittleEndian.h"
#include "base/Text.h"
#include "norvik/private/Refusals.h"

namespace quillon {

namespace {

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloat = 3;
constexpr std::uint16_t kExtensible = 0xFFFE;
/// The plain format, and the extensible one up to the first two bytes of the sub-format.
constexpr std::size_t kPlainBytes = 16;
constexpr std::size_t kExtensibleBytes = 26;

[[noreturn]] void RefuseFormatTag(std::uint16_t tag, std::uint64_t offset) {
    std::u16string_view name;
    switch (tag) {
        case 2: name = u"ADPCM"; break;
        case 6: name = u"A-law"; break;
        case 7: name = u"mu-law"; break;
        case 80: name = u"MPEG"; break;
        case 85: name = u"MP3"; break;
        default: break;
    }
    if (name.empty()) {
        throw FormatError(Say(u"format tag %1 at byte %2 is not supported",
                              u"тег формата %1 в байте %2 не поддерживается", {Number(tag), Number(offset)}));
    }
    throw FormatError(Say(u"compressed samples, %1 (%2), at byte %3", u"сжатые отсчёты, %1 (%2), в байте %3",
                          {std::u16string(name), Number(tag), Number(offset)}));
}

/// The container of one sample: what the frame gives each channel, which is wider than the bits where these are padded;
/// the whole bytes of the bits where the frame itself is padded.
std::size_t ContainerBytes(std::size_t frameBytes, std::size_t channels, std::size_t bits) {
    const std::size_t needed = (bits + 7) / 8;
    const std::size_t share = frameBytes / channels;
    const bool shared = frameBytes % channels == 0 && (share <= 4 || share == 8) && share >= needed;
    return shared ? share : needed;
}

bool KindOf(std::uint16_t tag, std::size_t containerBytes, SampleKind& kind) {
    if (tag == kFloat) {
        kind = containerBytes == 8 ? SampleKind::Float64 : SampleKind::Float32;
        return containerBytes == 4 || containerBytes == 8;
    }
    switch (containerBytes) {
        case 1: kind = SampleKind::Unsigned8; return true;
        case 2: kind = SampleKind::Int16; return true;
        case 3: kind = SampleKind::Int24; return true;
        case 4: kind = SampleKind::Int32; return true;
        default: return false;
    }
}

}  // namespace

WaveFormat ParseWaveFormat(std::span<const std::uint8_t> chunk, std::uint64_t offset) {
    if (chunk.size() < kPlainBytes) {
        RefuseField(u"the format chunk is shorter than 16 bytes:", u"блок формата короче 16 байт:", chunk.size(),
                    offset);
    }
    std::uint16_t tag = Le16(chunk.data());
    std::uint64_t tagOffset = offset;
    if (tag == kExtensible) {
        if (chunk.size() < kExtensibleBytes) {
            RefuseField(u"the extensible format chunk is shorter than 26 bytes:",
                        u"расширенный блок формата короче 26 байт:", chunk.size(), offset);
        }
        tag = Le16(chunk.data() + 24);
        tagOffset = offset + 24;
    }
    if (tag != kPcm && tag != kFloat) RefuseFormatTag(tag, tagOffset);

    WaveFormat format;
    format.channels = Le16(chunk.data() + 2);
    format.rate = Le32(chunk.data() + 4);
    format.frameBytes = Le16(chunk.data() + 12);
    format.bits = Le16(chunk.data() + 14);
    if (format.channels == 0) RefuseField(u"channel count", u"число каналов", 0, offset + 2);
    if (format.rate == 0) RefuseField(u"sample rate", u"частота дискретизации", 0, offset + 4);
    if (format.frameBytes == 0) RefuseField(u"block align", u"размер кадра", 0, offset + 12);
    const std::size_t container = ContainerBytes(format.frameBytes, format.channels, format.bits);
    if (!KindOf(tag, container, format.kind)) {
        RefuseField(u"bits per sample", u"разрядность отсчёта", format.bits, offset + 14);
    }
    if (container * format.channels > format.frameBytes) {
        RefuseField(u"too small a block align for the channels:", u"слишком малый для каналов размер кадра:",
                    format.frameBytes, offset + 12);
    }
    return format;
}

}  // namespace quillon
