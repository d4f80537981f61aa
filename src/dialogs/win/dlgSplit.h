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

struct SplitDialogContext {
    std::shared_ptr<RecordingBlock> block;
    std::u16string recording;  ///< full path
    SplitSettings& settings;   ///< written when a run starts
    KVExport& exporter;        ///< its progress callback is the dialog's during a run and is removed afterwards
    UserServices& services;
    char16_t decimalSeparator = u'.';
    std::function<void()> showHelp = {};
};

/// Lets the user split a block into files; returns when the dialog is closed. During a run the dialog ignores input and
/// cannot be closed. A run ends early when the program does. Throws what the block does when it is asked for its length
/// and rate.
void ShowSplitDialog(HWND owner, SplitDialogContext context);

}  // namespace quillon
