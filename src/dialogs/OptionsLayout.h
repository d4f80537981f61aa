#pragma once

#include <span>
#include <string>
#include <vector>

#include "data/UserServices.h"
#include "dialogs/DialogTemplate.h"
#include "dialogs/OptionsModel.h"

namespace quillon {

/// Numbers of the controls of the options dialog; those of an array follow each other in the order of the values that
/// they stand for.
enum OptionsControl : int {
    tabOptions = 100,
    pbTab = 101,  ///< three pages
    cmdOk = control::kIdOk,
    cmdCancel = control::kIdCancel,
    cmdHelp = control::kIdHelp,

    frTime = 110,
    optTime = 111,
    cboTime = 114,
    frScale = 120,
    optScale = 121,
    chkUnitScaling = 123,
    optDigits = 124,
    cboDigits = 126,
    frGrid = 130,
    pbGridColor = 131,
    optGridStyle = 132,
    frWCursor = 140,
    optCursor = 141,
    imgCur = 145,

    frFFTPalette = 200,
    optFFTPalette = 201,
    frSpectrumType = 210,
    optSpectrumType = 211,
    lblAmpScale = 220,
    cboAmpScale = 221,
    lblDBRange = 222,
    cboDBRange = 223,
    lbDB = 224,
    lblFFTWindow = 225,
    cboFFTWindow = 226,
    lblFFTSize = 227,
    cboFFTSize = 228,
    lblFFTPersent = 229,

    frText = 300,
    chkXColumn = 301,
    optXFormat = 302,
    chkRowHead = 304,
    chkRowSize = 305,
    chkRowRate = 306,
    chkRowStep = 307,
    chkAsShown = 308,
    frFile = 310,
    optFile = 311,
    frCh = 320,
    optCh = 321,
    frFastFile = 330,
    txtFastFile = 331,
    cmdBrowse = 332,
};

inline constexpr int kOptionPages = 3;

/// Which entry a control holds. Option buttons follow each other; with 0 buttons it is a list.
struct OptionChoice {
    int id;
    int buttons;
    int OptionEntries::*entry;
};
struct OptionTick {
    int id;
    bool OptionEntries::*entry;
};
struct OptionText {
    int id;
    std::u16string OptionEntries::*entry;
};
/// All but the colour of the grid, which no control of the system holds.
[[nodiscard]] std::span<const OptionChoice> OptionChoices();
[[nodiscard]] std::span<const OptionTick> OptionTicks();
[[nodiscard]] std::span<const OptionText> OptionTexts();

/// What a list or an edit field with a list offers; nothing for other controls.
[[nodiscard]] std::vector<std::u16string> OptionLines(const UserServices& services, int id);

/// The dialog itself: tab strip and buttons.
[[nodiscard]] DialogTemplate OptionsFrame(const UserServices& services);
/// The controls of one page, from 0.
[[nodiscard]] DialogTemplate OptionsPage(const UserServices& services, int page);

}  // namespace quillon
