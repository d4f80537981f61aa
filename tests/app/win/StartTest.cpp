#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace ::quillon::testing;

class StartTest : public MainWindowTest {
  protected:
    void Create() { MainWindowTest::Create(Wide(m_folder.Path())); }

    [[nodiscard]] RECT Place(int id) const {
        RECT place{};
        GetWindowRect(Control(id), &place);
        return place;
    }

    /// The controls that the Tab key goes through, from the folder tabs on.
    [[nodiscard]] std::vector<int> TabOrder() const {
        std::vector<int> order;
        HWND at = Control(tabPath);
        do {
            order.push_back(GetDlgCtrlID(at));
            at = GetNextDlgTabItem(m_form->Window(), at, FALSE);
        } while (at != nullptr && at != Control(tabPath) && order.size() < 20);
        return order;
    }
};

TEST_F(StartTest, TheGraphIsInItsPlaceBeforeTheOtherControlsCome) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(5000)));
    Create();
    ASSERT_EQ(Control(lstFile), nullptr);
    const RECT before = Place(pbGraph);
    EXPECT_GT(before.bottom - before.top, 100);
    ShowWindow(m_form->Window(), SW_SHOW);
    SetForegroundWindow(m_form->Window());
    ASSERT_TRUE(WaitFor([&] { return Control(lstFile) != nullptr; }));
    const RECT after = Place(pbGraph);
    EXPECT_TRUE(EqualRect(&before, &after))
        << before.top << ".." << before.bottom << ", then " << after.top << ".." << after.bottom;
    // Though the graph came first.
    Command(mnuTabPath);
    EXPECT_THAT(TabOrder(), ElementsAre(tabPath, lstDrive, lstDir, tabFile, cboFileType, lstFile, pbGraph, pbPathList));
}

TEST_F(StartTest, AWindowThatStartsAsAnIconOpensTheFirstRecordingWhenItIsSeen) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(5000)));
    for (const int command : {SW_SHOWMINNOACTIVE, SW_SHOWMINIMIZED}) {
        m_global = {};
        Create();
        m_form->Show(command);
        EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin"));
        EXPECT_THAT(Lines(lstBlock), IsEmpty());
        ShowWindow(m_form->Window(), SW_RESTORE);
        SetForegroundWindow(m_form->Window());
        ASSERT_TRUE(WaitFor([&] { return !Lines(lstBlock).empty(); }));
        EXPECT_EQ(ItemCount(), m_global.document->Block().channelCount);
        EXPECT_GT(Capture(pbGraph).Count(TraceColor(0)), 200);
        EXPECT_LE(AmplitudeScale::TableEntry(m_global.view->ScaleY()), 20.0) << "fitted to the graph as it is seen";
        EXPECT_EQ(TabCtrl_GetCurSel(Control(tabPath)), 1);
        TearDown();
    }
}

TEST_F(StartTest, WhyTheFirstFileIsRefusedIsStillToldWhenTheStatusBarComes) {
    static_cast<void>(m_folder.Write(u"a.bin", FileBytes().Text("ABIN").Zeros(200)));
    Start();
    EXPECT_THAT(Status(StatusPanel::Status), ::testing::StartsWith(L"a.bin: "));
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin"));
    EXPECT_EQ(SendMessageW(Control(lstFile), LB_GETCURSEL, 0, 0), 0);
}

}  // namespace
}  // namespace quillon
