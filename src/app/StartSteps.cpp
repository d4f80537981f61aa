#include "app/StartSteps.h"

#include <utility>

namespace quillon {

void StartSteps::Plan(Steps steps) {
    if (!std::exchange(m_planned, true)) m_steps = std::move(steps);
}

bool StartSteps::RunNext() {
    if (m_running || m_steps.empty()) return false;
    const std::function<void()> step = std::move(m_steps.front());
    m_steps.pop_front();
    m_running = true;
    try {
        step();
    } catch (const std::exception& error) {
        onFailed(error);
    }
    m_running = false;
    return true;
}

bool StartSteps::RunAll() {
    while (RunNext()) {
    }
    return !m_running;
}

}  // namespace quillon
