#include "norvik/private/WaveMarks.h"

#include <algorithm>
#include <string_view>

#include "base/LittleEndian.h"
#include "base/Text.h"
#include "norvik/private/WaveChunks.h"

namespace quillon {

namespace {

constexpr std::size_t kCueBytes = 24;

}  // namespace

void WaveCueTexts::Add(std::span<const std::uint8_t> list) {
    if (list.size() < 4 || Characters(list.first(4)) != "adtl") return;
    for (std::size_t at = 4; list.size() - at >= 12;) {
        const std::string_view id = Characters(list.subspan(at, 4));
        const std::size_t size = std::min<std::size_t>(Le32(list.data() + at + 4), list.size() - at - 8);
        if ((id == "labl" || id == "note") && size >= 4) {
            std::string_view text = Characters(list.subspan(at + 12, size - 4));
            text = Trim(text.substr(0, text.find('\0')));
            auto& texts = id == "labl" ? m_labels : m_notes;
            if (!text.empty()) texts.emplace(Le32(list.data() + at + 8), FromUtf8OrLatin1(text));
        }
        at = std::min(at + 8 + size + size % 2, list.size());
    }
}

std::u16string WaveCueTexts::TakeTextOf(std::uint32_t cue) {
    for (auto* texts : {&m_labels, &m_notes}) {
        if (auto found = texts->extract(cue)) return std::move(found.mapped());
    }
    return Decimal(cue);
}

std::vector<FrameMark> ReadWaveCues(std::span<const std::uint8_t> chunk, WaveCueTexts& texts, bool playlist) {
    std::vector<FrameMark> marks;
    if (chunk.size() < 4) return marks;
    const std::size_t count = std::min<std::size_t>(Le32(chunk.data()), (chunk.size() - 4) / kCueBytes);
    for (std::size_t index = 0; index < count; ++index) {
        const std::uint8_t* cue = chunk.data() + 4 + index * kCueBytes;
        const std::uint32_t sampleOffset = Le32(cue + 20);
        const std::uint32_t position = sampleOffset == 0 && !playlist ? Le32(cue + 4) : sampleOffset;
        marks.push_back({position, texts.TakeTextOf(Le32(cue))});
    }
    std::stable_sort(marks.begin(), marks.end(),
                     [](const FrameMark& left, const FrameMark& right) { return left.position < right.position; });
    return marks;
}

}  // namespace quillon
