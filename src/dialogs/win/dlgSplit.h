#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/win/Win32.h"
#include "data/UserServices.h"
#include "export/KVExport.h"
#include "export/SplitSettings.h"
#include "norvik/NorvikCore.h"

namespace quillon {

namespace split_controls {

/// The dialog's controls. Those of an array have consecutive numbers: the first is of the mode by time and of names by
/// number, the second of the mode by samples and of names by samples.
enum SplitControl : int {
    cmdSplit = IDOK,
    cmdCancel = IDCANCEL,
    cmdHelp = IDHELP,
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

struct SplitDialogContext {
    std::shared_ptr<RecordingBlock> block;
    std::u16string recording;  ///< full path
    SplitSettings& settings;   ///< written when a run starts
    KVExport& exporter;        ///< its progress is the dialog's during a run, and then none
    UserServices& services;
    char16_t decimalSeparator = u'.';
    std::function<void()> showHelp = {};
};

/// Lets the user split a block into files; returns when the dialog is closed. During a run the dialog answers nothing
/// and cannot be closed. A run ends early when the program does. Throws what the block does when it is asked for its
/// length and rate.
void ShowSplitDialog(HWND owner, SplitDialogContext context);

}  // namespace quillon
