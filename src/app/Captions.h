#pragma once

#include <string>
#include <string_view>

#include "data/QL_Types.h"
#include "data/UserServices.h"
#include "format/QL_Format.h"
#include "view/TimeAxis.h"

namespace quillon {

/// A name as it stands in a menu: ampersands are doubled, so that they are shown and not taken for a mnemonic.
[[nodiscard]] std::u16string EscapedCaption(std::u16string_view name);

/// Caption of the main window for the open file (its path; empty without one) and the line of the list of blocks that
/// describes the loaded block.
[[nodiscard]] std::u16string WindowCaption(const std::u16string& file, const std::u16string& blockLine);

/// Caption of a copied picture of the view: the window's caption, how the signals are shown
/// (see ShownTexts), the first and last place shown, and the start time.
[[nodiscard]] std::u16string ImageCaption(const std::u16string& windowCaption, const std::u16string& shown,
                                          const ViewBlock& block, const TimeAxis& axis, const FormatOptions& format,
                                          const UserServices& services);

}  // namespace quillon
