#include "cli/Interrupt.h"

#include <atomic>
#include <csignal>

namespace quillon::cli {

namespace {

std::atomic<bool> g_asked = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

void Keep(int signal) {
    g_asked = true;
    std::signal(signal, SIG_DFL);
}

}  // namespace

InterruptScope::InterruptScope() {
    g_asked = false;
    m_before = std::signal(SIGINT, Keep);
    // A shell that starts the program in the background lets it ignore Ctrl+C.
    if (m_before == SIG_IGN) std::signal(SIGINT, SIG_IGN);
}

InterruptScope::~InterruptScope() {
    std::signal(SIGINT, m_before == SIG_ERR ? SIG_DFL : m_before);
}

bool InterruptScope::IsAsked() {
    return g_asked;
}

}  // namespace quillon::cli
