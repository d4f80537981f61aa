#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "support/ViewFixture.h"
#include "view/QL_ChUtils.h"
#include "view/ReportCanvas.h"
#include "view/ReportPicture.h"
#include "view/ScaleLabels.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// Pixels of a text by themselves: rows of '#' and '.'.
std::string Drawn(const ReportFont& font, const std::u16string& text) {
    const TextSize size = font.SizeOf(text);
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size.width * size.height), 0);
    ReportCanvas(pixels.data(), size.width, size.height).DrawText({text, 0, 0, 1}, font);
    std::string drawn = std::to_string(size.width) + ' ';
    for (const std::uint32_t pixel : pixels) drawn += pixel == 1 ? '#' : '.';
    return drawn;
}

TEST(ReportFont, EveryLetterThatTextsNeedLooksLikeNoOther) {
    const ReportFont font(1);
    const std::string box = Drawn(font, u"\uFFFF");
    std::u16string ascii, cyrillic = u"Ёё", latin;
    for (char16_t letter = u'!'; letter <= u'~'; ++letter) ascii += letter;
    for (char16_t letter = u'А'; letter <= u'я'; ++letter) cyrillic += letter;
    for (char16_t letter = 0xC0; letter <= 0xFF; ++letter) {
        if (std::u16string_view(u"ÐðÞþ").find(letter) == std::u16string_view::npos) latin += letter;
    }
    for (const std::u16string& letters :
         {ascii + latin + u"°±²³µ·–—…√ΩΔ№«»≤≥≈≠→←", cyrillic + u"0123456789.,:;-+()[]%"}) {
        std::map<std::string, char16_t> seen;
        for (const char16_t letter : letters) {
            const auto [other, isNew] = seen.emplace(Drawn(font, {letter}), letter);
            EXPECT_TRUE(isNew) << std::hex << int{letter} << " looks like " << int{other->second};
            EXPECT_NE(other->first, box) << std::hex << int{letter};
            EXPECT_NE(other->first.find('#'), std::string::npos) << std::hex << int{letter};
        }
    }
    EXPECT_EQ(Drawn(font, u"\U0001F600"), box) << "two units, one box";
    EXPECT_EQ(Drawn(font, u"\u03BC\u2126\n"), Drawn(font, u"µΩ ")) << "as units are written elsewhere";
    // Twice as large, every pixel is four.
    const TextSize once = font.SizeOf(u"Щ, 5 µV");
    const TextSize twice = ReportFont(2).SizeOf(u"Щ, 5 µV");
    EXPECT_EQ(twice.height, 2 * once.height);
    EXPECT_EQ(twice.width, 2 * once.width);
    const auto ink = [](const std::string& drawn) { return std::count(drawn.begin(), drawn.end(), '#'); };
    EXPECT_EQ(ink(Drawn(ReportFont(2), u"Щ, 5 µV")), 4 * ink(Drawn(font, u"Щ, 5 µV")));
}

TEST(ReportCanvas, NothingIsDrawnOutsideAndArrowsAreTheirTriangles) {
    constexpr std::int32_t side = 40;
    std::vector<std::uint32_t> pixels(side * side, 0);
    ReportCanvas canvas(pixels.data(), side, side);
    canvas.Limit(5, 30);
    canvas.Fill({-100, -100, 100, 100, 7});
    canvas.DrawText({u"Щ", 27, -3, 9}, ReportFont(3));
    for (std::int32_t at = 0; at < side * side; ++at) {
        const bool inside = at % side >= 5 && at % side < 30;
        ASSERT_EQ(pixels[static_cast<std::size_t>(at)] != 0, inside) << at;
    }
    canvas.Limit(0, side);
    for (const std::int32_t base : {18, 2}) {
        canvas.Fill({0, 0, side, side, 0});
        canvas.DrawArrow({3, {{{10, 10}, {16, base}, {4, base}}}}, {1, 2});
        for (std::int32_t at = 0; at < side * side; ++at) {
            // Of the distance to the tip, three quarters are to either side.
            const std::int32_t down = (at / side - 12) * (base > 10 ? 1 : -1);
            const bool inside = down >= 0 && down <= 8 && 4 * std::abs(at % side - 11) <= 3 * down;
            ASSERT_EQ(pixels[static_cast<std::size_t>(at)], inside ? 3U : 0U) << at % side << ' ' << at / side;
        }
    }
}

class ReportTest : public EmptyViewFixture {
  protected:
    void LoadAny(std::size_t channels, std::mt19937& random, bool marks) {
        auto block = std::make_shared<FakeBlock>();
        for (std::size_t at = 0; at < channels; ++at) {
            block->samples.emplace_back(3000);
            for (auto& code : block->samples.back()) code = static_cast<std::int16_t>(random() % 2000);
            block->titles.push_back(std::u16string(1 + random() % 25, u'Ж'));
            block->units.emplace_back(std::array{u"µV", u"mV", u"%", u"very long unit", u""}[random() % 5]);
        }
        for (std::int32_t position = 0; marks && position < 3000; position += 1 + static_cast<int>(random() % 400))
            block->marks.emplace_back(position, std::u16string(random() % 30, u'm'));
        m_view.SetLanes(true);
        Load(block);
    }
    [[nodiscard]] ReportLayout Layout(const ReportFont& font, ReportHeading heading) const {
        FormatOptions format;
        format.timeOfDay = true;
        return {{96 * font.Scale(), format, [&font](const std::u16string& text) { return font.SizeOf(text); }},
                std::move(heading)};
    }
};

/// The graph in the picture, at every scale, is what GraphPicture draws of the view.
TEST_F(ReportTest, TheGraphIsThatOfTheWindow) {
    std::mt19937 random(3);
    for (const int scale : {1, 2, 3}) {
        for (const std::size_t channels : {1U, 2U, 9U}) {
            LoadAny(channels, random, false);
            const ReportFont font(scale);
            const ReportLayout layout = Layout(font, {u"a", u"b"});
            ReportPicture picture(m_document, m_view, font, layout, {900, 500});
            m_view.Select(500, 1700);
            m_view.FitSelection();
            ASSERT_TRUE(picture.DrawGraph([] { return false; }));
            picture.FitScale();
            ASSERT_TRUE(picture.DrawGraph([] { return false; }));
            picture.DrawFrame();

            const TextSize size = picture.GraphSize();
            std::vector<std::uint32_t> expected(static_cast<std::size_t>(size.width * size.height));
            GraphPicture graph;
            graph.SetPixels(expected.data(), size.width, size.height);
            ExtremesCache extremes;
            const FormatOptions& format = layout.Style().format;
            graph.Draw({m_document.Block(), m_view.Axis(), m_view.GetLanes(), extremes, false, false, GridStyle::Lines,
                        TraceColor(0), GridColumns(m_view.Axis(), m_document.Block(), format, 96 * scale)});
            ASSERT_NE(std::count(expected.begin(), expected.end(), TraceColor(0)), 0);
            for (std::int32_t y = 0; y < size.height; ++y) {
                const auto* const row = picture.Pixels().data() + (picture.Margins().top + y) * 900;
                for (std::int32_t x = 0; x < size.width; ++x) {
                    ASSERT_EQ(row[picture.Margins().left + x], expected[static_cast<std::size_t>(y * size.width + x)])
                        << scale << ' ' << channels << ": " << x << ' ' << y;
                }
            }
        }
    }
}

/// Whatever is shown at whatever size: texts are inside the picture, none lies over another, and none but those of
/// marks over the graph.
TEST_F(ReportTest, NoTextLiesOverAnother) {
    std::mt19937 random(8);
    const auto some = [&](int below) { return static_cast<std::int32_t>(random() % static_cast<unsigned>(below)); };
    std::size_t bars = 0, titles = 0, times = 0, marks = 0;
    for (int round = 0; round < 150; ++round) {
        LoadAny(static_cast<std::size_t>(1 + some(20)), random, true);
        const ReportFont font(1 + some(3));
        ReportHeading heading;
        for (int part = some(5); part >= 0; --part) heading.emplace_back(some(60), u'Щ');
        const ReportLayout layout = Layout(font, heading);
        m_view.SetDpi(1);
        m_view.SetRawCodes(round % 5 == 0);
        const std::int32_t width = 200 + some(1200);
        const std::int32_t wanted = layout.WantedHeight(m_view, width);
        const ReportMargins around = layout.MarginsFor(m_view, m_document, {width, wanted});
        const auto lanes = m_view.UsesLanes() ? m_view.LanesOfChannels().Layout().Count() : 1;
        ASSERT_EQ(wanted - around.top - around.bottom, lanes * LaneLayout::kLeastHeight * font.Scale());
        const std::int32_t height = layout.LeastHeight(m_view, width) + some(600);
        const ReportPicture picture(m_document, m_view, font, layout, {width, height});
        ASSERT_EQ(m_view.GetLanes().size(), m_view.UsesLanes() ? m_document.Block().channelNumbers.size() : 1U);
        m_view.FitBlock();
        const ReportMargins& margins = picture.Margins();
        const std::int32_t right = margins.left + picture.GraphSize().width;
        const std::int32_t end = margins.top + picture.GraphSize().height;
        ASSERT_TRUE(right == width - margins.right && end == height - margins.bottom);

        const auto expectApart = [&](const std::vector<ReportText>& texts, const auto& isOutside) {
            for (std::size_t a = 0; a < texts.size(); ++a) {
                const TextSize size = font.SizeOf(texts[a].text);
                const ReportBox box{texts[a].x, texts[a].y, texts[a].x + size.width, texts[a].y + size.height};
                ASSERT_TRUE(isOutside(box)) << round << ": " << box.left << ' ' << box.top;
                for (std::size_t b = 0; b < a; ++b) {
                    const TextSize other = font.SizeOf(texts[b].text);
                    ASSERT_TRUE(box.right <= texts[b].x || texts[b].x + other.width <= box.left ||
                                box.end <= texts[b].y || texts[b].y + other.height <= box.top)
                        << round;
                }
            }
        };
        const ReportPlan plan = layout.Frame(m_view, m_document, margins);
        expectApart(plan.texts, [&](const ReportBox& box) {
            const bool onGraph = box.right > margins.left && box.left < right && box.end > margins.top && box.top < end;
            return !onGraph && box.left >= 0 && box.right <= width && box.top >= 0 && box.end <= height;
        });
        for (const ReportText& text : plan.texts) {
            bars += text.text.ends_with(m_view.RawCodes() ? u" k" : u" mV") ? 1U : 0U;
            titles += text.text.starts_with(u"Ж") ? 1U : 0U;
            times += text.y >= end ? 1U : 0U;
        }
        ExtremesCache extremes;
        const GraphScene scene{m_document.Block(), m_view.Axis(), m_view.GetLanes(), extremes};
        const std::vector<ReportText> texts = layout.MarkTexts(scene).texts;
        marks += texts.size();
        expectApart(texts, [&](const ReportBox& box) {
            return box.top >= 0 && box.left >= kMarkGap && box.right <= picture.GraphSize().width;
        });
    }
    EXPECT_GT(bars, 100U);
    EXPECT_GT(titles, 500U);
    EXPECT_GT(times, 300U);
    EXPECT_GT(marks, 300U);
}

TEST_F(ReportTest, TheHeadingTellsWhatIsShown) {
    std::mt19937 random(1);
    LoadAny(2, random, false);  // from 2023-03-15 12:00:00, 30 s at 100 Hz
    FormatOptions format;
    const auto heading = [&](const SampleSpan& samples, const std::u16string& shown, Language language) {
        std::u16string text;
        for (const std::u16string& part : MakeReportHeading(m_document, samples, shown, format, language))
            text += part + u'|';
        return text;
    };
    EXPECT_EQ(heading({0, 1000}, u"", Language::English), u"a.fake|0:00:00 – 0:00:10|10 s||");
    format.timeOfDay = true;
    EXPECT_EQ(heading({150, 1000}, u"average", Language::English),
              u"a.fake|2023-03-15 12:00:01.5 – 12:00:11.5|10 s|average|");
    format.sampleIndexes = true;
    EXPECT_EQ(heading({99, 2}, u"средний", Language::Russian), u"a.fake|отсчёты 100 – 101|0.02 s|средний|");
    const auto night = Sevens(2, 3000, 0.05);
    night->title = u"sleep";
    const auto recording = std::make_shared<FakeRecording>();
    recording->name = u"/home/n.fake";
    recording->blocks = {Sevens(1), night};
    m_library.files[recording->name] = recording;
    m_document.OpenFile(recording->name, {});
    m_document.LoadBlock(1);
    format.sampleIndexes = false;
    EXPECT_EQ(heading({0, 2160}, u"", Language::Russian),
              u"n.fake|блок 2: sleep|2023-03-15 12:00:00 – 2023-03-16 0:00:00|12:00:00||");
}

}  // namespace
}  // namespace quillon
