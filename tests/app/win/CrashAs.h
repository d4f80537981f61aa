#pragma once

#include <string>

namespace quillon::testing {

/// Installs the trace of crashes, then crashes in that way; see CrashTraceTest. Returns only when it cannot.
int CrashAs(const std::string& how);

}  // namespace quillon::testing
