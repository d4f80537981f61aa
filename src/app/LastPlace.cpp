#include "app/LastPlace.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <limits>
#include <map>
#include <vector>

#include "base/Resume.h"
#include "base/Text.h"

namespace quillon {

namespace {

using Numbers = std::vector<std::int64_t>;
using Fields = std::map<std::u16string, Numbers, std::less<>>;

constexpr std::int64_t kMostSamples = std::numeric_limits<std::int32_t>::max();

void AddField(std::u16string& text, std::u16string_view name, std::initializer_list<std::int64_t> numbers) {
    text += (text.empty() ? u"" : u";") + std::u16string(name);
    char16_t before = u'=';
    for (const std::int64_t number : numbers) {
        text += before + Decimal(number);
        before = u',';
    }
}

/// What stands before the next `end`, which is taken away with it.
std::u16string_view TakePart(std::u16string_view& text, char16_t end) {
    const std::u16string_view part = text.substr(0, text.find(end));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

/// Empty where one of them is no whole number.
Numbers NumbersOf(std::u16string_view text) {
    Numbers numbers;
    while (!text.empty()) {
        const std::string digits = Utf8(TakePart(text, u','));
        const char* const last = digits.data() + digits.size();
        std::int64_t number = 0;
        const auto [end, error] = std::from_chars(digits.data(), last, number);
        if (error != std::errc() || end != last) return {};
        numbers.push_back(number);
    }
    return numbers;
}

Fields FieldsOf(std::u16string_view text) {
    Fields fields;
    while (!text.empty()) {
        std::u16string_view field = TakePart(text, u';');
        const std::u16string name(TakePart(field, u'='));
        fields.emplace(name, NumbersOf(field));
    }
    return fields;
}

/// Reads the numbers of a text, and keeps in mind whether one was missing or outside its range.
class FieldReader {
  public:
    explicit FieldReader(std::u16string_view text) : m_fields(FieldsOf(text)) {}

    [[nodiscard]] bool Has(std::u16string_view name) const { return m_fields.contains(name); }
    template <typename Number>
    void Read(std::u16string_view name, std::size_t at, std::int64_t least, std::int64_t most, Number& value) {
        const auto found = m_fields.find(name);
        const bool there = found != m_fields.end() && at < found->second.size();
        const std::int64_t number = there ? found->second[at] : least;
        m_whole = m_whole && there && number >= least && number <= most;
        if (m_whole) value = static_cast<Number>(number);
    }
    [[nodiscard]] bool IsWhole() const { return m_whole; }

  private:
    Fields m_fields;
    bool m_whole = true;
};

}  // namespace

std::u16string TextOf(const LastPlace& place) {
    const TimeAxis::Place& time = place.view.place.time;
    std::u16string text;
    AddField(text, u"block", {place.block});
    AddField(text, u"zoom", {time.zoom});
    AddField(text, u"first", {time.first});
    AddField(text, u"scale", {place.view.place.scale});
    AddField(text, u"shift", {place.view.place.shift});
    if (time.free) {
        const PageSamples page = time.page.parts > PageSamples::kMostParts ? PageOf(time.page.Count()) : time.page;
        AddField(text, u"page", {page.samples, page.parts, time.width});
    }
    if (place.view.selection.active)
        AddField(text, u"selection", {place.view.selection.start, place.view.selection.end});
    if (place.view.pinned != 0) AddField(text, u"pinned", {place.view.pinned});
    return text;
}

std::optional<LastPlace> LastPlaceOf(std::u16string_view text, const WaveformView::State& present) {
    FieldReader fields(text);
    LastPlace place{0, present};
    WaveformView::State& view = place.view;
    view.history.Clear();
    view.selection = {};
    view.pinned = 0;
    view.scaleChosen = true;
    TimeAxis::Place& time = view.place.time;
    fields.Read(u"block", 0, 0, std::numeric_limits<std::int16_t>::max() - 1, place.block);
    fields.Read(u"zoom", 0, 0, TimeAxis::kZoomCount - 1, time.zoom);
    fields.Read(u"first", 0, 0, kMostSamples, time.first);
    fields.Read(u"scale", 0, 0, AmplitudeScale::kScaleCount - 1, view.place.scale);
    fields.Read(u"shift", 0, -AmplitudeScale::kFarthest, AmplitudeScale::kFarthest, view.place.shift);
    time.free = fields.Has(u"page");
    time.page = {};
    if (time.free) {
        fields.Read(u"page", 1, 1, PageSamples::kMostParts, time.page.parts);
        fields.Read(u"page", 0, 1, kMostSamples * time.page.parts, time.page.samples);
        fields.Read(u"page", 2, 1, std::numeric_limits<std::int16_t>::max(), time.width);
    }
    if (fields.Has(u"selection")) {
        view.selection.active = true;
        fields.Read(u"selection", 0, 1, kMostSamples, view.selection.start);
        fields.Read(u"selection", 1, 1, kMostSamples, view.selection.end);
    }
    if (fields.Has(u"pinned")) fields.Read(u"pinned", 0, 1, kMostSamples, view.pinned);
    if (!fields.IsWhole()) return std::nullopt;
    return place;
}

bool IsKnown(const LastPlace& place, const Document& document) {
    const ViewFile& file = document.File();
    if (!file.recording || file.recording->ReadShare() >= 1.0) return true;
    // Only the last block grows.
    if (file.blockCount != place.block + 1) return file.blockCount > place.block;
    const TimeAxis::Place& time = place.view.place.time;
    const double perColumn = time.free ? time.page.Count() / time.width : TimeAxis::TableEntry(time.zoom);
    const double first = time.first * perColumn;
    std::int32_t samples = 0;
    Resume([&] { samples = file.recording->GetBlock(file.blockCount)->SampleCount(); });
    return samples > first && samples >= place.view.selection.Last();
}

bool IsAtStart(const Document& document, const WaveformView& view) {
    return document.File().currentBlockIndex == 0 && view.Axis().FirstColumn() == 0 && !view.Selected().active &&
           !view.HasHistory();
}

}  // namespace quillon
