#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;
using namespace ::quillon::testing;

/// The main window over a device whose events the test raises.
class SoundWindowTest : public MainWindowTest {
  protected:
    void SetUp() override {
        static_cast<void>(m_folder.Write(u"a.bin", SawRecording(20000)));
        static_cast<void>(m_folder.Write(u"b.bin", FileBytes().Text("no recording")));
        m_device.count = 2;
        StartWith(m_device);
    }
    /// What the last command made the device play.
    std::vector<std::string> Calls(int command) {
        m_device.calls.clear();
        m_device.written.clear();
        Command(command);
        while (m_device.written.size() < 40000) {
            const std::size_t before = m_device.written.size();
            m_device.events.moreWanted();
            if (m_device.written.size() == before) break;
        }
        return m_device.calls;
    }
    /// Pixels of a column that a band inverts.
    bool LineAt(int column) const {
        const Pixels graph = Capture(pbGraph);
        int black = 0;
        for (int y = 0; y < graph.height; ++y) black += graph.At(column, y) == 0 ? 1 : 0;
        return black > graph.height / 2;
    }
    DeviceState m_device;
};

TEST_F(SoundWindowTest, WhatIsSeenOrSelectedIsPlayed) {
    EXPECT_THAT(Calls(mnuSoundPlay), ElementsAre("open 1 100"));
    const auto visible = static_cast<std::size_t>(m_global.view->Axis().Visible().count);
    ASSERT_EQ(m_device.written.size(), visible);
    EXPECT_EQ(m_device.written[99], 99);
    // The second channel, of a selection; then all channels of it.
    m_global.document->ChooseChannel(2);
    m_global.view->Select(310, 301);
    EXPECT_THAT(Calls(mnuSoundPlay), ElementsAre("stop", "open 1 100"));
    EXPECT_THAT(m_device.written, ElementsAre(5, 5, 5, 5, 5, 5, 5, 5, 5, 5));
    EXPECT_THAT(Calls(mnuSoundPlay + 1), ElementsAre("stop", "open 2 100"));
    EXPECT_EQ(m_device.written.size(), 20U);
}

TEST_F(SoundWindowTest, ALineFollowsAndTheViewPagesOn) {
    m_global.view->Select(1, 20000);
    Command(mnuSoundPlay);
    EXPECT_TRUE(IsEnabled(mnuSoundPlay + 2, m_form->State()));
    m_device.events.started();
    m_device.events.writeProgress(200);
    EXPECT_TRUE(m_global.playback->Position() == 200 || m_global.playback->Position() == 201);
    EXPECT_FALSE(Status().empty());
    const int column = m_global.playback->Position() - 1;
    Command(mnuSelect + 2);  // stops first ...
    EXPECT_EQ(m_device.calls.back(), "stop");
    EXPECT_TRUE(m_global.view->Selected().active);
    EXPECT_EQ(Status(), L"");
    Command(mnuSelect + 2);  // ... then clears the selection
    EXPECT_FALSE(m_global.view->Selected().active);
    const Pixels without = Capture(pbGraph);
    EXPECT_FALSE(LineAt(column));
    m_global.view->Select(1, 20000);
    Command(mnuSoundPlay);
    m_global.view->Deselect();
    m_device.events.writeProgress(200);
    EXPECT_TRUE(LineAt(column));
    // Beyond the edge the view follows.
    const int width = without.width;
    m_device.events.writeProgress(width + 50);
    EXPECT_GE(m_global.view->Axis().FirstColumn(), width);
    EXPECT_TRUE(LineAt(m_global.playback->Position() - 1 - m_global.view->Axis().FirstColumn()));
    m_device.events.stopped();
    EXPECT_FALSE(m_global.playback->IsPlaying());
    EXPECT_EQ(Status(), L"");
}

TEST_F(SoundWindowTest, RefusalsAreToldAndNothingPlaysOn) {
    m_device.refusal = u"bad format";
    Command(mnuSoundPlay);
    EXPECT_EQ(Status(), L"bad format");
    EXPECT_FALSE(IsEnabled(mnuSoundPlay + 2, m_form->State()));
    m_device.refusal.clear();
    // Another file ends it, and what is told of the file stays when the device's word comes late.
    Command(mnuSoundPlay);
    m_device.events.writeProgress(10);
    m_device.calls.clear();
    ClickLine(lstFile, 1);
    EXPECT_THAT(m_device.calls, ElementsAre("stop"));
    m_device.events.stopped();
    EXPECT_THAT(Status(), StartsWith(L"b.bin: "));
    ClickLine(lstFile, 0);
    Command(mnuSoundPlay);
    // What another command has told stays, from the first position to the end.
    m_device.events.writeProgress(10);
    EXPECT_NE(Status(), L"");
    m_services->SetStatus(u"exported");
    m_device.events.writeProgress(20);
    EXPECT_EQ(Status(), L"exported");
    m_device.events.stopped();
    EXPECT_EQ(Status(), L"exported");
    m_device.count = 0;
    Command(mnuSoundPlay);
    EXPECT_EQ(Status(), L"exported");
    m_device.count = 2;
    SendMessageW(m_form->Window(), WM_DEVICECHANGE, 0, 0);
    Command(mnuSoundPlay);
    m_device.calls.clear();
    SendMessageW(m_form->Window(), WM_CLOSE, 0, 0);
    EXPECT_THAT(m_device.calls, ElementsAre("stop"));
}

TEST_F(SoundWindowTest, TheMenuListsTheDevices) {
    // The menu that opens out of another one.
    HMENU sound = nullptr;
    const HMENU menu = GetMenu(m_form->Window());
    for (int at = 0; at < 400; ++at) {
        const HMENU inner = GetSubMenu(GetSubMenu(menu, at / 40), at % 40);
        if (inner != nullptr && GetMenuItemID(inner, 0) == mnuSoundCard) sound = inner;
    }
    ASSERT_NE(sound, nullptr);
    const auto open = [&] { SendMessageW(m_form->Window(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(sound), 0); };
    open();
    EXPECT_EQ(GetMenuItemCount(sound), 2);
    EXPECT_TRUE(GetMenuState(sound, mnuSoundCard, MF_BYCOMMAND) & MF_CHECKED);
    m_device.count = 0;
    open();
    EXPECT_EQ(GetMenuItemCount(sound), 1);
    EXPECT_TRUE(GetMenuState(sound, mnuSoundCard, MF_BYCOMMAND) & MF_GRAYED);
    EXPECT_FALSE(IsEnabled(mnuSoundPlay, m_form->State()));
}

}  // namespace
}  // namespace quillon
