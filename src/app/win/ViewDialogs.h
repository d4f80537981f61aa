#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/GoToInput.h"
#include "base/win/Win32.h"
#include "data/UserServices.h"
#include "format/QL_Format.h"
#include "spectrum/SpectrumSettings.h"
#include "view/Readout.h"
#include "view/Selection.h"
#include "view/Statistics.h"

namespace quillon {

// Small windows of the main window's commands. Each returns when the user has closed it.

/// Statistics of the shown channels over a selection; `shown`: how they are shown. `onWork` is given the steps of a
/// pass that takes longer, and nothing when they are no longer wanted.
void ShowStatistics(HWND owner, const ReadoutSource& source, const Selection& selection, const std::u16string& shown,
                    const UserServices& services, const std::function<void(StatisticsPass* pass)>& onWork);

/// Asks for a place of the block and, unless `offered.page` is empty, for a page; `offered` are the initial texts. None
/// when the user cancels. What `meaningOf` refuses is told in the box.
[[nodiscard]] std::optional<GoToMeaning> AskForPlace(HWND owner, const GoToTexts& offered, const UserServices& services,
                                                     const std::function<GoToMeaning(const GoToTexts&)>& meaningOf);

/// Asks for the name and the pairs of a montage; none when the user cancels. What `refusalOf` refuses is told in the
/// box.
[[nodiscard]] std::optional<std::u16string> AskForMontage(
    HWND owner, const UserServices& services, const std::function<std::u16string(const std::u16string&)>& refusalOf);

/// Asks for the highest and the lowest level of the spectrogram; none when the user cancels.
[[nodiscard]] std::optional<SpectrumSettings> AskForLevels(HWND owner, const SpectrumSettings& present,
                                                           const UserServices& services, const FormatOptions& format);

/// Asks for the highest frequency of the spectrogram in Hz, 0 for all; none when the user cancels.
[[nodiscard]] std::optional<double> AskForFrequency(HWND owner, float present, const UserServices& services,
                                                    const FormatOptions& format);

}  // namespace quillon
