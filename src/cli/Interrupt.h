#pragma once

namespace quillon::cli {

/// While it exists, the first Ctrl+C does not end the process but is kept for a command that looks for it and removes
/// its unfinished file; the next one ends the process.
class InterruptScope {
  public:
    InterruptScope();
    ~InterruptScope();
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;

    [[nodiscard]] static bool IsAsked();

  private:
    using Handler = void (*)(int);
    Handler m_before;
};

}  // namespace quillon::cli
