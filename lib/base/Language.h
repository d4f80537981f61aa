#pragma once

namespace quillon {

/// The two languages of the user interface and of every message.
enum class Language { English, Russian };

}  // namespace quillon
