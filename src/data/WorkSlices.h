#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace quillon {

/// Runs long passes over a recording in slices between the messages of the window, the one of the lowest priority
/// number first. Everything runs on the caller's thread.
class WorkSlices {
  public:
    using Clock = std::chrono::steady_clock;

    struct Pass {
        int text = 0;                   ///< number of the text that names it to the user
        std::function<bool()> step;     ///< does a piece of some milliseconds at most; false when all is done
        std::function<double()> share;  ///< how much is done, 0 to 1
        std::function<void()> onDone;   ///< called once after the last step; may start passes; may be empty
    };

    /// What the user is told of a pass.
    struct Report {
        int text = 0;
        int percent = 0;  ///< 0 to 99
        friend bool operator==(const Report&, const Report&) = default;
    };
    /// A pass that is done sooner is not reported.
    static constexpr std::chrono::milliseconds kReportAfter{300};

    /// Starts a pass; a pass of the same priority is dropped.
    void Start(int priority, Pass pass);
    void Drop(int priority) { m_passes.erase(priority); }
    void DropAll() { m_passes.clear(); }
    [[nodiscard]] bool IsRunning(int priority) const { return m_passes.contains(priority); }
    [[nodiscard]] bool IsIdle() const { return m_passes.empty(); }

    /// Does pieces until that time has passed, at least one. False when no pass is left. An exception of a step drops
    /// its pass and is thrown on. A call out of a step does nothing.
    bool Run(Clock::duration slice);
    /// The pass that is under way, if it has been for kReportAfter.
    [[nodiscard]] std::optional<Report> Current() const;
    /// Priority of the pass that Current reports; only where it reports one.
    [[nodiscard]] int CurrentPriority() const { return m_passes.begin()->first; }

  private:
    struct Running {
        std::shared_ptr<const Pass> pass;  ///< shared with a step that may drop or replace it
        Clock::time_point start;
    };
    void RunStep();

    std::map<int, Running> m_passes;  ///< by priority
    bool m_inside = false;            ///< a step is running
};

}  // namespace quillon
