#pragma once

#include <exception>
#include <utility>

namespace quillon {

/// Runs one of several steps that do not depend on each other: where it throws, the next one still runs.
template <typename Step>
void Resume(Step&& step) {
    try {
        std::forward<Step>(step)();
    } catch (const std::exception&) {
    }
}

}  // namespace quillon
