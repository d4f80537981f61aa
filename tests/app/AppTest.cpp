#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <random>
#include <set>
#include <stdexcept>
#include <tuple>
#include <vector>

#include "app/GoToInput.h"
#include "app/HelpFile.h"
#include "app/MainSplitters.h"
#include "app/PanelTable.h"
#include "app/StartSteps.h"
#include "app/StringIds.h"
#include "app/ValuesReadout.h"
#include "app/ViewTables.h"
#include "base/Density.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// Every rectangle that something is seen in, with one page of each strip of tabs.
std::vector<PixelRect> Seen(const MainLayout& layout, bool firstPages, bool spectrogram) {
    std::vector<PixelRect> all{layout.tools,   layout.goTo,        layout.tabPath,    layout.tabFile,    layout.values,
                               layout.scaleY,  layout.graph,       layout.scrollY,    layout.zoomX,      layout.scaleX,
                               layout.scrollX, layout.splitColumn, layout.splitLists, layout.splitValues};
    for (const PixelRect& rect :
         firstPages ? std::vector{layout.drive, layout.pathList, layout.folders, layout.fileType, layout.files}
                    : std::vector{layout.channels, layout.blocks})
        all.push_back(rect);
    for (const PixelRect& rect : layout.filters) {
        if (rect.height > 0) all.push_back(rect);
    }
    if (layout.overview.height > 0) all.push_back(layout.overview);
    if (spectrogram)
        all.insert(all.end(), {layout.scaleF, layout.spectrogram, layout.palette, layout.splitSpectrogram});
    if (layout.levels.width > 0) all.push_back(layout.levels);
    return all;
}

/// How far a point lies outside a rectangle.
int Distance(const PixelRect& rect, int x, int y) {
    return std::max({rect.left - x, x - rect.Right() + 1, rect.top - y, y - rect.Bottom() + 1, 0});
}

TEST(MainLayout, FillsTheWindowWithoutOverlapsAndHolesAtAnySizeAndSetting) {
    std::mt19937 random(3);
    const auto between = [&](int least, int most) {
        return least + static_cast<int>(random() % static_cast<unsigned>(most - least + 1));
    };
    for (int round = 0; round < 400; ++round) {
        const int dpi = std::array{96, 120, 144, 168, 192}.at(static_cast<std::size_t>(between(0, 4)));
        const auto scaled = [dpi](int pixels) { return (pixels * dpi + 48) / 96; };
        const bool own = round % 4 == 0;
        const auto perhaps = [&](int most) { return own ? 0 : between(1, most); };
        LayoutInput input{0, 0, scaled(22), scaled(21), scaled(24), scaled(30), scaled(380), scaled(100), dpi};
        input.clientWidth = scaled(between(550, 3800));
        input.clientHeight = scaled(between(310, 2100));
        input.listWidth = perhaps(5000);
        input.upperPercent = perhaps(100);
        input.spectrogram = random() % 2 == 0;
        input.spectrogramPercent = perhaps(100);
        input.valuesHeight = perhaps(3000);
        input.filters = random() % 2 == 0;
        input.overview = random() % 2 == 0;
        for (std::int32_t& width : input.filterWidths) width = scaled(between(30, 110));
        const MainLayout layout = ArrangeMain(input);
        SCOPED_TRACE(::testing::Message() << dpi << ' ' << input.clientWidth << " x " << input.clientHeight << ' '
                                          << input.listWidth << ' ' << input.upperPercent << ' ' << input.valuesHeight);
        for (const bool firstPages : {false, true}) {
            const std::vector<PixelRect> all = Seen(layout, firstPages, input.spectrogram);
            for (std::size_t a = 0; a < all.size(); ++a) {
                ASSERT_GT(all[a].width, 3) << a;
                ASSERT_GT(all[a].height, 3) << a;
                ASSERT_GE(std::min(all[a].left, all[a].top), 0) << a;
                ASSERT_LE(all[a].Right(), input.clientWidth) << a;
                ASSERT_LE(all[a].Bottom(), input.clientHeight - input.statusHeight) << a;
                for (std::size_t b = 0; b < a; ++b) {
                    const bool apart = all[a].Right() <= all[b].left || all[b].Right() <= all[a].left ||
                                       all[a].Bottom() <= all[b].top || all[b].Bottom() <= all[a].top;
                    ASSERT_TRUE(apart) << a << " overlaps " << b;
                }
            }
            // Only the corner of the scroll bars, what is above and below the figures of the colours, and the row of
            // the toolbars have nothing.
            for (int point = 0; point < 60; ++point) {
                const int x = between(0, input.clientWidth - 1);
                const int y = between(layout.graph.top, input.clientHeight - input.statusHeight - 1);
                int nearest = input.clientWidth;
                for (const PixelRect& rect : all) nearest = std::min(nearest, Distance(rect, x, y));
                ASSERT_LE(nearest, x >= layout.scaleX.Right() ? scaled(22) + layout.levels.width : scaled(6))
                    << x << ' ' << y;
            }
        }
        EXPECT_GT(layout.graph.width, input.clientWidth / 3);
        EXPECT_EQ(layout.graph.width, input.spectrogram ? layout.spectrogram.width : layout.graph.width);
        EXPECT_EQ(layout.graph.left, layout.scaleX.left);
        EXPECT_EQ(layout.graph.width, layout.scaleX.width);
        if (layout.overview.height > 0) {
            EXPECT_EQ(layout.overview.Right(), layout.graph.Right());
            EXPECT_GE(layout.scaleX.top - layout.graph.top, scaled(160));
        } else if (input.overview) {
            EXPECT_LT(layout.scaleX.top - layout.graph.top, scaled(302)) << "there is no room for it";
        }
        for (const int list : {layout.folders.height, layout.files.height}) EXPECT_GE(list, scaled(20));
        // What was used is kept for the next time, and gives the same.
        input.listWidth = layout.listWidth;
        input.upperPercent = layout.upperPercent;
        input.valuesHeight = layout.valuesHeight;
        input.spectrogramPercent = layout.spectrogramPercent;
        const MainLayout again = ArrangeMain(input);
        EXPECT_EQ(again.graph.left, layout.graph.left);
        EXPECT_EQ(again.values.top, layout.values.top);
        EXPECT_EQ(again.upperPercent, layout.upperPercent);
        EXPECT_EQ(again.spectrogramPercent, layout.spectrogramPercent);
    }
}

TEST(MainSplitters, FollowThePointer) {
    WindowPlacement placement;
    placement.spectrogramShown = true;
    const auto arranged = [&] {
        LayoutInput input{1600, 1000, 22, 21, 24, 30, 380, 100, 96};
        TakeSizes(placement, input);
        return ArrangeMain(input);
    };
    const std::pair<Splitter, PixelRect MainLayout::*> splitters[] = {
        {Splitter::Column, &MainLayout::splitColumn},
        {Splitter::Lists, &MainLayout::splitLists},
        {Splitter::Values, &MainLayout::splitValues},
        {Splitter::Spectrogram, &MainLayout::splitSpectrogram}};
    for (const auto& [splitter, member] : splitters) {
        const MainLayout before = arranged();
        const auto middle = [member = member](const MainLayout& layout) {
            const PixelRect& rect = layout.*member;
            return std::pair(rect.left + rect.width / 2, rect.top + rect.height / 2);
        };
        const auto [x, y] = middle(before);
        SCOPED_TRACE(static_cast<int>(splitter));
        EXPECT_EQ(SplitterAt(before, x, y), splitter);
        DragSplitter(splitter, before, x + 30, y - 30, placement);
        const auto [right, up] = middle(arranged());
        // Shares are whole percents of some 900 pixels.
        if (splitter == Splitter::Column) {
            EXPECT_NEAR(right, x + 30, 1);
        } else {
            EXPECT_NEAR(up, y - 30, 12);
        }
    }
    EXPECT_EQ(SplitterAt(arranged(), arranged().graph.left + 50, arranged().graph.top + 50), Splitter::None);
}

TEST(MainSplitters, KeepTheSizesThatTheyHadAtAnotherDensity) {
    WindowPlacement placement;
    placement.listWidth = 301;
    placement.valuesHeight = 151;
    placement.sizesDpi = 96;
    const auto at = [&](int dpi) {
        LayoutInput input;
        input.clientWidth = ScaledTo(dpi, 1600);
        input.clientHeight = ScaledTo(dpi, 1000);
        input.dpi = dpi;
        TakeSizes(placement, input);
        return ArrangeMain(input);
    };
    for (const int dpi : {96, 144, 120, 192, 96}) {
        EXPECT_EQ(at(dpi).listWidth, (301 * dpi + 48) / 96);
        EXPECT_EQ(at(dpi).valuesHeight, (151 * dpi + 48) / 96);
    }
    // What is dragged at one density is measured at it; what is not, seems to be as large as it was.
    const MainLayout layout = at(192);
    DragSplitter(Splitter::Column, layout, 701 + layout.splitColumn.width / 2, 500, placement);
    KeepReached(Splitter::Column, at(192), placement);
    EXPECT_EQ(at(192).listWidth, 701);
    EXPECT_NEAR(at(96).listWidth, 350, 1);
    EXPECT_EQ(at(96).valuesHeight, 151);
    // Sizes of versions that did not tell the density are taken as they are.
    placement.sizesDpi = 0;
    EXPECT_EQ(at(96).listWidth, 701);
}

TEST(PanelTable, EveryLineIsSeenWholeOrCanBeScrolledTo) {
    std::u16string text = u"X:\t1 s\r\n";
    for (int line = 1; line < 20; ++line) text += u"Ch:\t-1 mV\r\n";
    const CellLines lines = CellsOf(text);
    ASSERT_EQ(lines.size(), 20U);
    // 10 pixels a letter: lines are 30 + 10 + 50 + 10 wide.
    const CellFont font{20, 10, [](const std::u16string& cell) { return 10 * static_cast<std::int32_t>(cell.size()); }};
    using Case = std::array<int, 4>;
    for (const auto& [width, height, columns, seen] :
         {Case{100, 400, 1, 20}, Case{200, 200, 2, 20}, Case{199, 200, 1, 10}, Case{99, 400, 1, 20},
          Case{5000, 20, 20, 20}}) {
        SCOPED_TRACE(width);
        const PanelTable table = ArrangeCells(lines, width, height, font);
        EXPECT_EQ(table.columns, columns);
        EXPECT_EQ(table.fits, seen == 20 && width >= 100);
        std::int32_t first = 1000;
        const std::vector<SeenCell> cells = SeenCells(lines, table, width, first);
        EXPECT_EQ(first, 20 - seen) << "the last line is the last that is seen";
        ASSERT_EQ(cells.size(), 2U * static_cast<unsigned>(seen));
        EXPECT_EQ(cells.back().text, u"-1 mV");
        for (const SeenCell& cell : cells) {
            EXPECT_LE(cell.top + table.lineHeight, height);
            EXPECT_LE(cell.right, width);
        }
    }
}

class ValuesReadoutTest : public ViewFixture {
  protected:
    ValuesReadoutTest() {
        m_values.onText = [this](const std::u16string& text) {
            m_text = text;
            ++m_told;
        };
    }
    Settings m_settings;
    FormatOptions m_format{false};
    ValuesReadout m_values{m_document, m_view, m_format, m_settings, m_services, Language::English};
    std::u16string m_text;
    int m_told = 0;
};

TEST_F(ValuesReadoutTest, TellsAnewOnlyWhatIsNotSoAnyLonger) {
    const std::u16string& details = m_document.File().fileInfo;
    m_values.TellHover(6, u"mark");
    m_values.KeepTrue();
    EXPECT_EQ(m_told, 1) << "nothing has changed";
    m_document.ShowAll(false);
    m_values.KeepTrue();
    EXPECT_EQ(m_text, u"mark\r\nX:\t0.05 s\r\n") << "the place and its mark are kept";
    m_values.TellSpectrum(6, u"spectrum");
    m_settings.window.spectrogramShown = true;
    m_values.KeepTrue();
    EXPECT_EQ(m_text, details);
    m_format.sampleIndexes = true;
    m_told = 0;
    m_values.KeepTrue();
    EXPECT_EQ(m_told, 0) << "the description depends on nothing";
}

TEST_F(ValuesReadoutTest, BeginsWithHowTheSignalsAreShown) {
    m_values.TellHover(5, {});
    const std::u16string raw = m_text;
    ShownSettings settings;
    settings.filters[u"V"].highPass = 0.5;
    settings.filters[u"V"].lowPass = 35.0;
    m_document.ShowAs(settings);
    m_values.BlockChanged();
    EXPECT_TRUE(m_text.starts_with(u"0.5-35 Hz\r\nX:"));
    // The rate of 100 Hz does not allow this one, which therefore is left out.
    settings.filters[u"V"].lowPass = 50.0;
    m_document.ShowAs(settings);
    m_values.BlockChanged();
    EXPECT_TRUE(m_text.starts_with(u"> 0.5 Hz\r\nX:"));
    m_document.ShowAs({});
    m_values.BlockChanged();
    EXPECT_EQ(m_text, raw);
}

TEST_F(ValuesReadoutTest, APlaceIsToldAsLongAsItIsVisible) {
    Load(Sevens(2));
    const auto details = m_document.File().fileInfo;
    m_values.TellHover(6, {});
    m_view.ScrollBy(3);
    m_values.KeepTrue();
    EXPECT_NE(m_text, details);
    m_view.ScrollBy(3);
    m_values.KeepTrue();
    EXPECT_EQ(m_text, details);
    m_values.TellSpectrum(m_view.Axis().Visible().End(), u"spectrum");
    m_values.KeepTrue();
    EXPECT_EQ(m_text, u"spectrum");
    m_view.GoToPage(2);
    m_values.KeepTrue();
    EXPECT_EQ(m_text, details);
}

TEST_F(ValuesReadoutTest, ARangeIsToldAsLongAsItIsSelected) {
    m_view.SelectBlock();
    m_values.TellHover(6, {});
    const std::u16string hover = m_text;
    m_values.SelectionChanged(false);
    EXPECT_EQ(m_text, hover);
    m_values.SelectionChanged(true);
    EXPECT_TRUE(m_text.starts_with(u"dX:"));
    m_values.SelectionStarted();
    EXPECT_TRUE(m_text.starts_with(u"X:\t0 s")) << "where the next one starts";
    m_values.TellRange();
    m_view.Deselect();
    m_values.SelectionChanged(false);
    EXPECT_EQ(m_text, m_document.File().fileInfo);
    m_values.TellHover(6, {});
    m_values.SelectionChanged(false);
    EXPECT_EQ(m_text, hover) << "a readout of a sample has no need of a selection";
}

TEST_F(ValuesReadoutTest, ARangeIsCompletedWhileItIsSelected) {
    const auto block = Sevens(2);
    block->pieceSamples = 10000;
    Load(block);
    m_view.SelectBlock();
    m_values.SelectionChanged(true);
    EXPECT_TRUE(m_values.IsIncomplete());
    for (int turn = 0; turn < 3; ++turn) m_values.MoreKnown();
    EXPECT_FALSE(m_values.IsIncomplete());
    m_view.LeaveBlock();
    m_view.SelectBlock();
    m_values.SelectionChanged(true);
    m_view.Deselect();
    m_told = 0;
    m_values.MoreKnown();
    EXPECT_EQ(m_told, 0) << "it went with its block";
}

TEST(ViewTables, TextKeepsItsColumnsWhateverTheCellsHold) {
    TextTable table;
    table.columns = {u"Name", u"a\tb", u"End"};
    table.rows = {{u"x\r\ny", u"1"}, {}, {u"1", u"2", u"3", u"of no column"}};
    EXPECT_EQ(TabbedText(table), u"Name\ta b\tEnd\r\nx  y\t1\t\r\n\t\t\r\n1\t2\t3\r\n");
}

constexpr const char16_t* kRussian = u"C:\\Q\\Kelvo.chm";
constexpr const char16_t* kEnglish = u"C:\\Q\\KelvoEN.chm";
constexpr const char16_t* kPattern = u"C:\\Q\\Kelvo*.chm";

/// A folder with some of the files; a look-up of what is in `failing` throws.
class FakeLookup final : public DirectoryLookup {
  public:
    bool Exists(const std::u16string& path) override { return Find(path); }
    std::u16string FirstMatch(const std::u16string& pattern) override {
        return Find(pattern) ? u"KelvoDE.chm" : std::u16string();
    }
    std::set<std::u16string> files;
    std::set<std::u16string> failing;

  private:
    bool Find(const std::u16string& name) const {
        if (failing.contains(name)) throw std::runtime_error("device not ready");
        return files.contains(name);
    }
};

TEST(StartSteps, RunOnceInOrderWhateverAsksOrFails) {
    StartSteps steps;
    std::vector<int> ran;
    int failures = 0;
    steps.onFailed = [&](const std::exception&) { ++failures; };
    EXPECT_TRUE(steps.RunAll() && !steps.RunNext() && !steps.AreDone()) << "nothing is planned yet";
    steps.Plan({[&] { ran.push_back(1); },
                [&] {
                    // A message that is handled within a step.
                    EXPECT_FALSE(steps.RunAll() || steps.RunNext() || steps.AreDone());
                    ran.push_back(2);
                    throw std::runtime_error("step");
                },
                [&] { ran.push_back(3); }, [&] { ran.push_back(4); }});
    steps.Plan({[&] { ran.push_back(9); }});
    EXPECT_TRUE(steps.RunNext());
    EXPECT_THAT(ran, ::testing::ElementsAre(1));
    EXPECT_TRUE(steps.RunAll() && steps.AreDone());
    EXPECT_THAT(ran, ::testing::ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(failures, 1);
    // The window is gone with the step that failed.
    StartSteps dropped;
    dropped.onFailed = [&](const std::exception&) { dropped.Drop(); };
    dropped.Plan({[] { throw std::runtime_error("step"); }, [&] { ran.push_back(9); }});
    EXPECT_TRUE(dropped.RunAll());
    EXPECT_EQ(ran.size(), 4U);
}

TEST(HelpFile, TheUsersChoiceDecidesBetweenTwoFilesOnly) {
    const std::u16string other = u"C:\\Q\\KelvoDE.chm";
    using Names = std::set<std::u16string>;
    const Names all{kRussian, kEnglish, kPattern};
    // What is there, what cannot be looked for, choice, language; the file that is taken, what becomes of the choice.
    using Case = std::tuple<Names, Names, std::int16_t, std::u16string_view, std::u16string, std::int16_t>;
    for (const auto& [files, failing, choice, language, file, after] :
         {Case(all, {}, 1, u"EN", kRussian, 1), Case(all, {}, 2, u"RU", kEnglish, 2),
          Case(all, {}, -3, u"EN", kEnglish, -3), Case(all, {}, 7, u"", kRussian, 7),
          Case(all, {kRussian}, 1, u"RU", kEnglish, 0), Case(all, {kRussian, kEnglish}, 1, u"RU", other, 0),
          Case(all, all, 1, u"RU", u"", 0), Case({kRussian, kPattern}, {}, 2, u"EN", kRussian, 0),
          Case({}, {}, 2, u"EN", u"", 0)}) {
        FakeLookup lookup;
        lookup.files = files;
        lookup.failing = failing;
        std::int16_t chosen = choice;
        EXPECT_EQ(ChooseHelpFile(lookup, u"C:\\Q", chosen, language), file);
        EXPECT_EQ(chosen, after);
    }
}

TEST(GoToInput, OnlyWhatWasTypedCountsAndNothingHappensByHalves) {
    ViewBlock block;
    block.sampleCount = 1000;
    block.sampleRate = 10.0;
    FormatOptions format;
    format.timeOfDay = false;
    const GoToTexts offered{u"5 s", u"10 s"};
    const auto mean = [&](const std::u16string& place, const std::u16string& page) {
        return MeaningOf({place, page}, offered, block, format, 51);
    };
    EXPECT_EQ(mean(u"5 s", u"10 s").sample, 51);
    const GoToMeaning page = mean(u"5 s", u"12.5 s");
    EXPECT_EQ(page.page, 12.5);
    EXPECT_FALSE(page.sample) << "the view stays where it is";
    const GoToMeaning both = mean(u"3 s", u"20 s");
    EXPECT_EQ(both.page, 20.0);
    EXPECT_EQ(both.sample, 31);
    EXPECT_EQ(mean(u"#9..#3", u"10 s").range, (PositionRange{3, 9}));
    EXPECT_FALSE(mean(u"#9..#3", u"10 s").sample);
    for (const auto& [place, length, refusal] :
         {std::tuple{u"3 s", u"0", IDS_PAGE_BAD}, {u"x", u"20 s", IDS_PLACE_UNCLEAR}, {u"x", u"x", IDS_PAGE_BAD}}) {
        const GoToMeaning refused = mean(place, length);
        EXPECT_EQ(refused.refusal, refusal);
        EXPECT_FALSE(refused.page || refused.sample || refused.range);
    }
    // Understood, but not there: hours before the block.
    block.startTime = 45000.5;
    format.timeOfDay = true;
    for (const auto& [place, refusal] : {std::pair{u"9:30:00", IDS_PLACE_BAD},
                                         {u"12:00:01..9:30:00", IDS_PLACE_BAD},
                                         {u"12:00:01..", IDS_PLACE_UNCLEAR},
                                         {u"9:61:00", IDS_PLACE_UNCLEAR},
                                         {u"#", IDS_PLACE_UNCLEAR}})
        EXPECT_EQ(mean(place, u"10 s").refusal, refusal) << refusal;
}

}  // namespace
}  // namespace quillon
