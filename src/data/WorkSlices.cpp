#include "data/WorkSlices.h"

#include <algorithm>
#include <utility>

namespace quillon {

void WorkSlices::Start(int priority, Pass pass) {
    m_passes.insert_or_assign(priority, Running{std::make_shared<const Pass>(std::move(pass)), Clock::now()});
}

bool WorkSlices::Run(Clock::duration slice) {
    if (m_inside || m_passes.empty()) return !m_passes.empty();
    const Clock::time_point start = Clock::now();
    m_inside = true;
    try {
        do {
            RunStep();
        } while (!m_passes.empty() && Clock::now() - start < slice);
    } catch (...) {
        m_inside = false;
        throw;
    }
    m_inside = false;
    return !m_passes.empty();
}

void WorkSlices::RunStep() {
    const int priority = m_passes.begin()->first;
    const std::shared_ptr<const Pass> pass = m_passes.begin()->second.pass;
    const auto isPresent = [&] {
        const auto found = m_passes.find(priority);
        return found != m_passes.end() && found->second.pass == pass;
    };
    try {
        if (pass->step()) return;
    } catch (...) {
        if (isPresent()) Drop(priority);
        throw;
    }
    if (!isPresent()) return;
    Drop(priority);
    if (pass->onDone) pass->onDone();
}

std::optional<WorkSlices::Report> WorkSlices::Current() const {
    if (m_passes.empty()) return std::nullopt;
    const Running& running = m_passes.begin()->second;
    if (Clock::now() - running.start < kReportAfter) return std::nullopt;
    return Report{running.pass->text, std::clamp(static_cast<int>(running.pass->share() * 100.0), 0, 99)};
}

}  // namespace quillon
