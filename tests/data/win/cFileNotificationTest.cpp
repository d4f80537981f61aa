#include "data/win/cFileNotification.h"

#include <gtest/gtest.h>

#include <fstream>

#include "app/win/MainWindowFixture.h"
#include "base/win/Win32.h"
#include "norvik/TemporaryFolder.h"
#include "norvik/win/Timer.h"

namespace quillon {
namespace {

using testing::PumpUntil;
using testing::TemporaryFolder;
namespace fs = std::filesystem;

constexpr DWORD timeout = 10'000;  ///< ms until a change that has to come counts as missing

/// Waits for a change of any kind in a folder. The system signals all notifications on a folder together, so after that
/// the one under test has been signalled too or never will be.
class ChangeWatch {
  public:
    explicit ChangeWatch(const fs::path& folder)
        : m_handle(FindFirstChangeNotificationW(folder.c_str(), FALSE,
                                                FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME |
                                                    FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE),
                   &FindCloseChangeNotification) {}
    void Expect(const std::function<void()>& change) {
        change();
        EXPECT_EQ(WaitForSingleObject(m_handle.get(), timeout), WAIT_OBJECT_0);
        EXPECT_TRUE(FindNextChangeNotification(m_handle.get()));
    }

  private:
    std::unique_ptr<void, decltype(&FindCloseChangeNotification)> m_handle;
};

struct ManualTimer final : TimerObject {
    explicit ManualTimer(std::function<void()> onTick) : tick(std::move(onTick)) {}
    void PutEnabled(bool on) override { enabled = on; }
    void PutInterval(std::int32_t milliseconds) override { interval = milliseconds; }
    bool enabled = true;
    std::int32_t interval = 0;
    std::function<void()> tick;
};

class FileNotification : public ::testing::Test {
  protected:
    [[nodiscard]] std::unique_ptr<cFileNotification> Make() {
        const TimerFactory factory = [this](std::function<void()> tick) {
            auto timer = std::make_unique<ManualTimer>(std::move(tick));
            m_timer = timer.get();
            return timer;
        };
        return std::make_unique<cFileNotification>(factory, [this] { ++m_events; });
    }
    /// Events of one tick of an enabled timer.
    int Tick() {
        const int before = m_events;
        if (m_timer->enabled) m_timer->tick();
        return m_events - before;
    }
    static void Touch(const fs::path& file) { std::ofstream(file).put('x'); }
    [[nodiscard]] fs::path Folder(const fs::path& name) const {
        fs::create_directory(m_path / name);
        return m_path / name;
    }

    TemporaryFolder m_folder;
    fs::path m_path = m_folder.Path();
    ManualTimer* m_timer = nullptr;  ///< of the notification made last
    int m_events = 0;
};

TEST_F(FileNotification, TellsNewDeletedAndRenamedFilesOnceAPeriodAndNothingElse) {
    const fs::path a = m_path / "a.edf";
    const fs::path b = m_path / "b.edf";
    const fs::path sub = Folder("sub");
    const auto watch = Make();
    EXPECT_EQ(m_timer->interval, 2000);
    EXPECT_FALSE(m_timer->enabled);
    ASSERT_TRUE(watch->StartWatch(m_path.wstring()));
    EXPECT_TRUE(m_timer->enabled);
    EXPECT_EQ(Tick(), 0);
    ChangeWatch changes(m_path);
    ChangeWatch inside(sub);
    const std::function<void()> touch = [&] { Touch(a); };
    const std::function<void()> rename = [&] { fs::rename(a, b); };
    const std::function<void()> remove = [&] { fs::remove(b); };
    for (const auto& change : {touch, rename, remove}) {
        changes.Expect(change);
        EXPECT_EQ(Tick(), 1);
        EXPECT_EQ(Tick(), 0);
    }
    for (const auto& change : {touch, rename, touch}) changes.Expect(change);
    EXPECT_EQ(Tick(), 1) << "of them all";
    changes.Expect([&] { std::ofstream(a, std::ios::app) << "more"; });
    changes.Expect([&] { fs::create_directory(m_path / "new"); });
    inside.Expect([&] { Touch(sub / "b.edf"); });
    inside.Expect([&] { fs::remove(sub / "b.edf"); });
    EXPECT_EQ(Tick(), 0);
}

TEST(Timer, TicksOnlyWhileEnabledAndMayEndInItsTick) {
    int ticks = 0;
    std::unique_ptr<TimerObject> once;
    once = MakeTimer([&] {
        once.reset();
        ++ticks;
    });
    once->PutEnabled(true);
    once->PutInterval(10);
    EXPECT_TRUE(PumpUntil([&] { return ticks > 0; }));
    // No tick arrives that was on its way already.
    for (const bool destroyed : {false, true}) {
        auto late = MakeTimer([&] { ++ticks; });
        late->PutInterval(10);
        late->PutEnabled(true);
        MSG message{};
        ASSERT_GT(GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER), 0);
        late->PutEnabled(false);
        if (destroyed) late.reset();
        DispatchMessageW(&message);
    }
    EXPECT_EQ(ticks, 1);
}

}  // namespace
}  // namespace quillon
