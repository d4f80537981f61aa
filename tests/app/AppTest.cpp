#include <gmock/gmock.h>

#include <set>
#include <tuple>

#include <system_error>

#include "app/Commands.h"
#include "app/GraphKeys.h"
#include "app/MainLayout.h"
#include "app/StartUp.h"
#include "app/StatusPanels.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

TEST(Init, AFailureIsToldOnceAndEndsTheStart) {
    QL_Global global;
    FakeServices services;
    StartUpParts parts;
    parts.systemVersion = [] { return 6; };
    parts.makeSaveDialog = [] { return nullptr; };
    parts.makeLibrary = [](Language) { return std::make_shared<FakeLibrary>(); };
    EXPECT_TRUE(Init(global, parts, services));
    EXPECT_EQ(global.systemVersion, 6);
    EXPECT_TRUE(services.messages.empty());

    parts.makeLibrary = [](Language) -> std::shared_ptr<RecordingLibrary> { throw std::runtime_error("no class"); };
    EXPECT_FALSE(Init(global, parts, services));
    ASSERT_EQ(services.messages.size(), 1U);
    EXPECT_EQ(services.messages[0], services.Text(1010)) << "an error without a number";

    parts.makeLibrary = [](Language) -> std::shared_ptr<RecordingLibrary> {
        throw std::system_error(5, std::generic_category(), "library");
    };
    EXPECT_FALSE(Init(global, parts, services));
    ASSERT_EQ(services.messages.size(), 2U);
    EXPECT_NE(services.messages[1].find(u" 5: library"), std::u16string::npos);
}

TEST(MainLayout, NothingOverlapsOrLeavesTheWindow) {
    for (const int dpi : {96, 120, 192}) {
        for (const auto& [width, height] : {std::pair{560, 340}, {640, 480}, {1024, 700}, {1920, 1080}, {3840, 2160}}) {
            for (const auto& [listWidth, upper] : {std::pair{0, 0}, {1, 1}, {5000, 99}}) {
                LayoutInput input{width * dpi / 96, height * dpi / 96, 22, 21, 24, 30, 380, 100, dpi, listWidth, upper};
                const MainLayout layout = ArrangeMain(input);
                const PixelRect all[] = {layout.tabPath,  layout.drive, layout.folders, layout.tabFile,
                                         layout.fileType, layout.files, layout.scaleY,  layout.graph,
                                         layout.scrollY,  layout.zoomX, layout.scaleX,  layout.scrollX};
                for (std::size_t a = 0; a < std::size(all); ++a) {
                    SCOPED_TRACE(::testing::Message() << dpi << ' ' << width << ' ' << listWidth << " control " << a);
                    EXPECT_GT(all[a].width, 14);
                    EXPECT_GT(all[a].height, 14);
                    EXPECT_LE(all[a].Right(), input.clientWidth);
                    EXPECT_LE(all[a].Bottom(), input.clientHeight - input.statusHeight);
                    for (std::size_t b = 0; b < a; ++b) {
                        const bool apart = all[a].Right() <= all[b].left || all[b].Right() <= all[a].left ||
                                           all[a].Bottom() <= all[b].top || all[b].Bottom() <= all[a].top;
                        EXPECT_TRUE(apart) << "overlaps " << b;
                    }
                }
                EXPECT_GT(layout.graph.width, input.clientWidth / 3);
                EXPECT_EQ(layout.graph.left, layout.scaleX.left);
                EXPECT_EQ(layout.graph.width, layout.scaleX.width);
            }
        }
    }
}

TEST(StatusPanels, TellTheVisibleShare) {
    TimeAxis axis;
    axis.SetWidth(1000);
    EXPECT_EQ(VisiblePart(axis, u'.'), u"");
    const auto part = [&](std::int32_t samples) { return axis.SetBlock(samples), VisiblePart(axis, u'.'); };
    EXPECT_EQ(part(1000), u"100%");
    EXPECT_EQ(part(1001), u"100%");
    EXPECT_EQ(part(2667), u"37%");
    EXPECT_EQ(part(10001), u"9.999%");
    EXPECT_EQ(part(20000), u"5.0%");
    EXPECT_EQ(part(80000), u"1.25%");
}

TEST(StatusPanels, TellLengthsBeyondADayAndCodes) {
    QL_Global global;
    FakeServices services;
    global.block.block = std::make_shared<FakeBlock>();
    global.block.sampleCount = 187200;
    global.block.sampleRate = 2.0;
    global.format.timeOfDay = true;
    const auto panel = [&](StatusPanel key) { return BlockPanels(global, services)[static_cast<std::size_t>(key)]; };
    EXPECT_EQ(panel(StatusPanel::Time), u"T: 26:00:00");
    global.amplitude.SelectScale(6);
    EXPECT_TRUE(panel(StatusPanel::Scale).starts_with(u"10#"));
    global.rawCodes = true;
    EXPECT_TRUE(panel(StatusPanel::Scale).starts_with(u"10 k#"));
}

TEST(GraphKeys, ModifiersAndFocusChooseTheCommand) {
    const auto move = [](Key key, bool control, bool shift) {
        return Moves()[static_cast<std::size_t>(CommandOf(KeyPlace::Graph, key, control, shift, false) - mnuMove)];
    };
    EXPECT_EQ(move(Key::Left, false, false).columns, -20);
    EXPECT_EQ(move(Key::Right, true, false).columns, 100);
    EXPECT_EQ(move(Key::Right, false, true).columns, 1);
    EXPECT_EQ(move(Key::Up, true, false).rows, -40);
    EXPECT_EQ(CommandOf(KeyPlace::Graph, Key::Left, false, false, true), mnuMark);
    EXPECT_EQ(CommandOf(KeyPlace::Graph, Letter('A'), true, false, false), mnuSelect);
    EXPECT_EQ(CommandOf(KeyPlace::ChannelList, Letter('A'), true, false, false), mnuChShow);
    EXPECT_EQ(CommandOf(KeyPlace::FileList, Key::Left, false, false, false), 0) << "a list keeps its own keys";
    EXPECT_EQ(CommandOf(KeyPlace::FileList, Letter('S'), true, false, false), mnuSaveAs);
    std::set<std::tuple<KeyPlace, Key, bool, bool, bool>> keys;
    for (const KeyBinding& binding : KeyBindings()) {
        EXPECT_TRUE(keys.insert({binding.place, binding.key, binding.control, binding.shift, binding.alt}).second);
        EXPECT_NE(CaptionId(binding.command), 0) << binding.command;
        EXPECT_EQ(CommandOf(binding.place, binding.key, binding.control, binding.shift, binding.alt), binding.command);
    }
}

}  // namespace
}  // namespace quillon
