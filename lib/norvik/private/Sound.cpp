#include "norvik/private/Sound.h"

#include <algorithm>

#include "base/Text.h"

namespace quillon {

FrameRecording DescribeSound(SampleKind kind, std::size_t channels, double rate) {
    FrameRecording recording;
    recording.layout = {kind, 0, channels * SampleBytes(kind), 0};
    recording.sampleRate = rate;
    for (std::size_t index = 0; index < channels; ++index) {
        ChannelDescription channel;
        channel.number = static_cast<std::int16_t>(index % kBlockChannels);
        channel.inputNumber = static_cast<std::int16_t>(std::min<std::size_t>(index + 1, 32767));
        channel.unit = u"FS";
        channel.scale = static_cast<float>(FullScaleUnit(kind));
        recording.channels.push_back(std::move(channel));
    }
    return recording;
}

Bilingual SoundName(std::u16string_view format, SampleKind kind, std::uint64_t bits) {
    return Say(IsFloat(kind) ? u"%1, float %2 bit" : u"%1, PCM %2 bit",
               IsFloat(kind) ? u"%1, с плавающей точкой, %2 бит" : u"%1, PCM %2 бит",
               {std::u16string(format), Decimal(static_cast<std::int64_t>(bits))});
}

}  // namespace quillon
