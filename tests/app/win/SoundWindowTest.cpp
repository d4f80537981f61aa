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
    /// Pixels of a column that a band inverts.
    bool LineAt(int column) const {
        const Pixels graph = Capture(pbGraph);
        int black = 0;
        for (int y = 0; y < graph.height; ++y) black += graph.At(column, y) == 0 ? 1 : 0;
        return black > graph.height / 2;
    }
    DeviceState m_device;
};

TEST_F(SoundWindowTest, ALineFollows) {
    m_global.view->Select(1, 20000);
    Command(mnuSoundPlay);
    m_global.view->Deselect();
    m_device.events.started();
    EXPECT_FALSE(LineAt(199));
    m_device.events.writeProgress(200);
    EXPECT_FALSE(Status().empty());
    EXPECT_TRUE(LineAt(m_global.playback->Position() - 1));
    // Beyond the edge the view follows.
    const int width = Capture(pbGraph).width;
    m_device.events.writeProgress(width + 50);
    EXPECT_GE(m_global.view->Axis().FirstColumn(), width);
    EXPECT_TRUE(LineAt(m_global.playback->Position() - 1 - m_global.view->Axis().FirstColumn()));
    m_device.events.stopped();
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
    m_device.count = 0;
    Command(mnuSoundPlay);
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
