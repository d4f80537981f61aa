#include "norvik/private/FrameCount.h"

#include <array>
#include <charconv>

#include "base/Text.h"
#include "norvik/private/Refusals.h"

namespace quillon {

FrameCount CountFrames(std::uint64_t declared, std::uint64_t available, std::size_t frameBytes) {
    if (declared <= available) return {declared / frameBytes, {}};
    const std::uint64_t count = available / frameBytes;
    return {count, Say(u"cut short: %1 of %2 samples", u"файл обрезан: отсчётов %1 из %2",
                       {Number(count), Number(declared / frameBytes)})};
}

FrameCount CountUnclosedFrames(std::uint64_t available, std::size_t frameBytes) {
    const std::uint64_t count = available / frameBytes;
    if (count == 0) return {0, {}};
    return {count, Say(u"length taken from the file's size", u"длина взята из размера файла")};
}

bool SizeWrapped(std::uint32_t declared, std::uint64_t available) {
    constexpr std::uint64_t wrap = std::uint64_t{1} << 32;
    return available > declared && (available - declared) % wrap == 0;
}

namespace {

/// Of at most nine digits: a rate of one sample in three seconds has no end.
std::u16string RateText(double rate) {
    constexpr int digits = 9;
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), rate, std::chars_format::scientific, digits - 1);
    double rounded = rate;
    std::from_chars(text.data(), end.ptr, rounded);
    return ShortestDecimal(rounded);
}

}  // namespace

Bilingual DescribeFrames(const Bilingual& format, const FrameRecording& recording) {
    const bool single = recording.channels.size() == 1;
    const Bilingual counts =
        Say(std::u16string(single ? u", %1 channel at %2 Hz, %3 sample" : u", %1 channels at %2 Hz, %3 sample") +
                (recording.frameCount == 1 ? u"" : u"s"),
            u", каналов: %1, частота %2 Гц, отсчётов: %3",
            {Number(recording.channels.size()), RateText(recording.sampleRate), Number(recording.frameCount)});
    return {format.english + counts.english, format.russian + counts.russian};
}

void AppendRemark(Bilingual& info, const Bilingual& remark) {
    if (remark.english.empty()) return;
    info.english += u"; " + remark.english;
    info.russian += u"; " + remark.russian;
}

Bilingual FileTimeRemark() {
    return Say(u"start taken from the file's time", u"начало взято из времени файла");
}

}  // namespace quillon
