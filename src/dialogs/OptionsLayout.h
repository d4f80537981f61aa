#pragma once

#include "data/UserServices.h"
#include "dialogs/DialogTemplate.h"

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
    frFile = 310,
    optFile = 311,
    frCh = 320,
    optCh = 321,
    frFastFile = 330,
    txtFastFile = 331,
    cmdBrowse = 332,
};

inline constexpr int kOptionPages = 3;

/// The dialog itself: tab strip and buttons.
[[nodiscard]] DialogTemplate OptionsFrame(const UserServices& services);
/// The controls of one page, from 0.
[[nodiscard]] DialogTemplate OptionsPage(const UserServices& services, int page);

}  // namespace quillon
