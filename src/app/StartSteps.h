#pragma once

#include <deque>
#include <exception>
#include <functional>

namespace quillon {

/// What the start of the window does behind its first picture, in steps between which messages are handled.
class StartSteps {
  public:
    using Steps = std::deque<std::function<void()>>;

    /// To be set by the owner: a step has thrown. The steps that follow it run nevertheless, unless it drops them.
    std::function<void(const std::exception& error)> onFailed;

    /// Only the first plan counts.
    void Plan(Steps steps);
    /// Runs the next step; false when there is none, or one is under way.
    bool RunNext();
    /// Runs all that are left. False within a step: what needs all of them cannot be done there.
    bool RunAll();
    void Drop() { m_steps.clear(); }
    /// Whether all steps of the plan have run.
    [[nodiscard]] bool AreDone() const { return m_planned && m_steps.empty() && !m_running; }

  private:
    Steps m_steps;
    bool m_planned = false;
    bool m_running = false;
};

}  // namespace quillon
