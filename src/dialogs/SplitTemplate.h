#pragma once

#include <string>

#include "data/UserServices.h"
#include "dialogs/DialogTemplate.h"

namespace quillon {

namespace split_controls {

/// The dialog's controls. Those of an array have consecutive numbers: the first is of the mode by time and of names by
/// number, the second of the mode by samples and of names by samples.
enum SplitControl : int {
    cmdSplit = control::kIdOk,
    cmdCancel = control::kIdCancel,
    cmdHelp = control::kIdHelp,
    frSplit = 101,
    optSplit = 102,
    cboSize = 104,
    cboStep = 106,
    lblSize = 108,
    lblStep = 109,
    frFile = 110,
    chkBaseName = 111,
    lblBaseName = 112,
    optFileIndex = 113,
    lblFileIndex = 115,
    frPath = 117,
    lblFolder = 118,
    chkDelFiles = 119,
    lblStatusTitle = 120,
    lblPieces = 121,
    lblStatus = 122,
};

}  // namespace split_controls

/// The split dialog's controls in their places, with all texts that do not change.
[[nodiscard]] DialogTemplate MakeSplitTemplate(const UserServices& services, const std::u16string& baseName,
                                               const std::u16string& folder);

}  // namespace quillon
