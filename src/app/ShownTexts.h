#pragma once

#include <string>

#include "base/Language.h"
#include "data/Document.h"

/// What is told of how the signals of a document are shown. Frequencies that the rate of its block does not
/// allow are not told, as they change nothing. The separator is that of decimals.
namespace quillon {

/// Of the current channel: "0.5-35 Hz, 50 Hz, average"; empty where it is shown as it is stored, and without one.
[[nodiscard]] std::u16string TextOfCurrent(const Document& document, Language language, char16_t separator);

/// Of all shown channels of the block.
[[nodiscard]] std::u16string TextOfShown(const Document& document, Language language, char16_t separator);

}  // namespace quillon
