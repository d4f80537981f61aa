#include "app/Announcer.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillon {
namespace {

/// A timer whose ticks the test gives.
struct HandTimer final : TimerObject {
    HandTimer(std::function<void()> onTick, bool& isEnabled) : tick(std::move(onTick)), enabled(isEnabled) {}
    void PutEnabled(bool on) override { enabled = on; }
    void PutInterval(std::int32_t milliseconds) override { EXPECT_LE(1000 / milliseconds, 4); }
    std::function<void()> tick;
    bool& enabled;
};

TEST(Announcer, TellsAtOnceThenOnceAPauseAndTheLastTextAlways) {
    bool enabled = false;
    HandTimer* timer = nullptr;
    std::vector<std::u16string> told;
    Announcer announcer;
    announcer.onAnnounce = [&](const std::u16string& text) { told.push_back(text); };
    announcer.Tell(u"before");
    EXPECT_TRUE(told.empty());
    announcer.Attach([&](std::function<void()> tick) {
        auto made = std::make_unique<HandTimer>(std::move(tick), enabled);
        timer = made.get();
        return made;
    });
    for (const char16_t* text : {u"a", u"a", u"b", u"c"}) announcer.Tell(text);
    EXPECT_EQ(told, (std::vector<std::u16string>{u"a"}));
    ASSERT_TRUE(enabled);
    timer->tick();
    EXPECT_EQ(told, (std::vector<std::u16string>{u"a", u"c"}));
    ASSERT_TRUE(enabled) << "the next one waits as well";
    announcer.Tell(u"d");
    announcer.Tell(u"c");
    timer->tick();
    EXPECT_EQ(told.size(), 2U) << "it is the one told last again";
    EXPECT_FALSE(enabled);
    announcer.Tell(u"e");
    EXPECT_EQ(told.back(), u"e");
}

TEST(Announcer, ATableIsSpokenAsOneLine) {
    EXPECT_EQ(SpokenText(u"X:\t1.5 s\r\n\r\nCh 1:\t-3\tuV\r\n"), u"X: 1.5 s, Ch 1: -3 uV");
    EXPECT_EQ(SpokenText(u"\t\r\n"), u"");
}

}  // namespace
}  // namespace quillon
