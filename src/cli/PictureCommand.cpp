#include "cli/PictureCommand.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "cli/CommandSupport.h"
#include "cli/Interrupt.h"
#include "data/CoreTexts.h"
#include "data/ShownText.h"
#include "export/PngWriter.h"
#include "norvik/RecordingLibrary.h"
#include "view/PositionInput.h"
#include "view/ReportPicture.h"

namespace quillon::cli {

namespace {

constexpr std::int32_t kUsualWidth = 1400;
constexpr std::int32_t kUsualHeight = 700;
constexpr std::int32_t kLeastWidth = 200;
constexpr std::int32_t kLeastHeight = 100;
constexpr int kMostScale = 3;
constexpr int kDpi = 96;

/// What the options ask for.
struct PictureRequest {
    std::int64_t block = 1;
    std::int32_t width = kUsualWidth;
    std::optional<std::int32_t> height;  ///< none: as the lanes need it
    int scale = 1;
    GraphLook look;
    FormatOptions format;
};

/// A channel without a title is told by its number.
class PictureServices final : public SilentServices {
  public:
    explicit PictureServices(Language language) : m_language(language) {}
    [[nodiscard]] std::u16string Text(int id) const override {
        return id == IDS_CHANNEL ? Say(u"Channel", u"Канал").In(m_language) : std::u16string();
    }

  private:
    Language m_language;
};

PictureRequest ParseRequest(const ParsedArguments& parsed, Language language) {
    constexpr std::int64_t any = std::numeric_limits<std::int64_t>::max();
    PictureRequest request;
    request.block = WholeOption(parsed, u"--block", 1, -any, any);
    request.width = static_cast<std::int32_t>(WholeOption(parsed, u"--width", kUsualWidth, kLeastWidth, kMostPngSide));
    if (parsed.Has(u"--height")) {
        request.height = static_cast<std::int32_t>(WholeOption(parsed, u"--height", 0, kLeastHeight, kMostPngSide));
    }
    request.scale = static_cast<int>(WholeOption(parsed, u"--scale", 1, 1, kMostScale));
    if (parsed.Has(u"--dark")) request.look.colors = &kDarkColors;
    const auto width = static_cast<std::int32_t>(WholeOption(parsed, u"--line-width", 1, 1, kMostLineWidth));
    request.look.lineWidth = EnlargedLine(width, request.scale);
    const std::u16string time = parsed.Value(u"--time", u"clock");
    if (time != u"clock" && time != u"start" && time != u"samples")
        throw UsageError(u"'" + time + u"' is none of clock|start|samples for --time");
    constexpr int clockTime = 1;
    request.format.timeOfDay = time == u"clock";
    request.format.sampleIndexes = time == u"samples";
    request.format.timeUnit = clockTime;
    if (language == Language::Russian) request.format.decimalSeparator = u',';
    return request;
}

/// Opens the recording, reads all of it that tells of blocks and marks, and loads the block.
void Load(Document& document, RecordingLibrary& library, const ParsedArguments& parsed, const PictureRequest& request,
          Language language) {
    if (!document.OpenFile(parsed.words[1], {})) throw Refusal(library.LastErrorText());
    while (document.ReadMore(1).more) {
        if (InterruptScope::IsAsked()) RefuseInterrupted(language);
    }
    static_cast<void>(FindBlock(*document.File().recording, request.block, language));
    document.LoadBlock(static_cast<std::int16_t>(request.block - 1));
    if (document.Block().sampleCount < 1)
        throw Refusal(Say(u"the block has no samples", u"в блоке нет отсчётов").In(language));
    while (document.PrepareMore() == PrepareStep::More) {
        if (InterruptScope::IsAsked()) RefuseInterrupted(language);
    }
}

/// The sample, from 1 to `last`, that an option names.
std::int32_t PlaceOf(const CommandContext& context, std::u16string_view name, const ViewBlock& block,
                     const FormatOptions& format, std::int32_t present, std::int64_t last) {
    const std::u16string text = context.parsed.Value(name);
    std::optional<std::int32_t> sample = ParsePosition(text, block, format, present);
    if (sample == block.sampleCount) {
        // Places behind the end mean the end to the viewer; in a script they are mistakes.
        ViewBlock endless = block;
        endless.sampleCount = std::numeric_limits<std::int32_t>::max();
        sample = ParsePosition(text, endless, format, present);
    }
    if (!sample) throw UsageError(u"'" + text + u"' is no place in the block for " + std::u16string(name));
    if (*sample > last) {
        RefuseRange(context.language, u"there is no sample %1 (samples %2 to %3)",
                    u"нет отсчёта %1 (отсчёты с %2 по %3)", *sample, 1, block.sampleCount);
    }
    return *sample;
}

/// From --from to --to: up to a time, up to a sample that is told by its number, that one included.
SampleSpan AskedSamples(const CommandContext& context, const ViewBlock& block, const FormatOptions& format) {
    const ParsedArguments& parsed = context.parsed;
    const std::int64_t samples = block.sampleCount;
    const std::int32_t first = parsed.Has(u"--from") ? PlaceOf(context, u"--from", block, format, 1, samples) : 1;
    std::int32_t end = block.sampleCount;
    if (parsed.Has(u"--to")) {
        const std::u16string to = parsed.Value(u"--to");
        const bool counted = to.starts_with(u'#') ||
                             (format.sampleIndexes && to.find_first_not_of(u"0123456789") == std::u16string::npos);
        end = PlaceOf(context, u"--to", block, format, first, counted ? samples : samples + 1) - (counted ? 0 : 1);
    }
    if (end < first) throw UsageError(u"there is nothing of the block between --from and --to");
    return {first - 1, end - first + 1};
}

/// A channel has one lane.
std::vector<std::int16_t> WithoutRepetitions(const std::vector<std::int16_t>& channels) {
    std::vector<std::int16_t> once;
    for (const std::int16_t channel : channels) {
        if (std::find(once.begin(), once.end(), channel) == once.end()) once.push_back(channel);
    }
    return once;
}

/// Gives these channels of the block as it is asked for, or of its pairs, a lane each.
void ShowLanes(Document& document, WaveformView& view, const ShownSettings& settings,
               const std::vector<std::int16_t>& channels) {
    document.SetPairs(settings.montage.has_value());
    // An average is that of all channels, whichever are drawn.
    document.ShowAs(settings);
    const auto before = settings.montage ? document.Block().channelCount : std::int16_t{0};
    document.ShowAll(false);
    for (const std::int16_t channel : channels) document.Show(static_cast<std::int16_t>(before + channel), true);
    // All lanes are wanted, however low.
    view.SetDpi(1);
    view.SetLanes(true);
    view.BlockLoaded();
}

/// What an arranged view is to show: these samples, the lanes in the order of `channels` from top to bottom.
void ShowPart(const Document& document, WaveformView& view, const SampleSpan& samples,
              const std::vector<std::int16_t>& channels) {
    view.Select(samples.first + 1, samples.End());
    view.FitSelection();
    view.Deselect();
    const std::int16_t before = document.Shown().montage ? document.Block().channelCount : std::int16_t{0};
    for (std::size_t at = 0; at < channels.size(); ++at)
        view.DragTitle(static_cast<std::int16_t>(before + channels[at]), at);
}

/// The height asked for, else one in which lanes are comfortable. Throws Refusal where they have no room.
std::int32_t HeightFor(const PictureRequest& request, const ReportLayout& layout, const WaveformView& view,
                       Language language) {
    const std::int32_t least = layout.LeastHeight(view, request.width);
    const std::int32_t height =
        request.height.value_or(std::clamp(layout.WantedHeight(view, request.width), kUsualHeight, kMostPngSide));
    if (height >= least) return height;
    throw Refusal(Say(u"the channels have no room in a height of %1 (at least %2)",
                      u"каналы не помещаются в высоту %1 (не меньше %2)", {Decimal(height), Decimal(least)})
                      .In(language));
}

/// What is told of how the channels are shown; the pairs of a montage are titles of lanes.
std::u16string TextOfShown(ShownSettings settings, const RecordingBlock& shown,
                           const std::vector<std::int16_t>& channels, const PictureRequest& request,
                           Language language) {
    settings.montage.reset();
    return ShownText(settings, shown, {channels.begin(), channels.end()}, language, request.format.decimalSeparator);
}

}  // namespace

void RunPicture(const CommandContext& context) {
    const ParsedArguments& parsed = context.parsed;
    const Language language = context.language;
    PictureRequest request = ParseRequest(parsed, language);
    const ShownRequest shownRequest(parsed, language);
    const InterruptScope interrupt;
    const std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(language);
    const PictureServices services(language);
    Document document(*library, services);
    Load(document, *library, parsed, request, language);
    if (!(document.Block().startTime > 0.0)) request.format.timeOfDay = false;
    const SampleSpan samples = AskedSamples(context, document.Block(), request.format);
    const std::shared_ptr<RecordingBlock> shown = shownRequest.Show(document.Block().stored);
    const ShownSettings settings = shownRequest.SettingsFor(*document.Block().stored);
    const std::vector<std::int16_t> channels = WithoutRepetitions(ChosenChannels(parsed, *shown, language));
    // Report a target that cannot be written before doing the work.
    context.target.Open();

    WaveformView view(document);
    ShowLanes(document, view, settings, channels);
    const ReportFont font(request.scale);
    const ReportStyle style{kDpi * request.scale, request.format,
                            [&](const std::u16string& text) { return font.SizeOf(text); }, request.look};
    const std::u16string shownText = TextOfShown(settings, *shown, channels, request, language);
    const ReportLayout layout(style, MakeReportHeading(document, samples, shownText, request.format, language));
    const TextSize size{request.width, HeightFor(request, layout, view, language)};
    ReportPicture picture(document, view, font, layout, size);
    ShowPart(document, view, samples, channels);
    const auto draw = [&] {
        if (!picture.DrawGraph(InterruptScope::IsAsked)) RefuseInterrupted(language);
    };
    draw();
    if (!view.UsesLanes()) {
        picture.FitScale();
        draw();
    }
    picture.DrawFrame();
    const std::vector<std::byte> file = PngBytes({picture.Pixels(), size.width, size.height, kDpi * request.scale});
    if (InterruptScope::IsAsked()) RefuseInterrupted(language);
    context.target.Write({reinterpret_cast<const char*>(file.data()), file.size()});
    if (!picture.Failure().empty()) {
        const std::u16string lost =
            Say(u"some samples could not be read: %1", u"часть отсчётов не читается: %1", {Utf16(picture.Failure())})
                .In(language);
        context.error << "quillon-cli: " << Utf8(parsed.words[1]) << ": " << Utf8(lost) << '\n';
    }
}

}  // namespace quillon::cli
