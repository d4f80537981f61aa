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
    /// Calls `work`, which may take long. False when the dialog is to close, too.
    std::function<bool(const std::function<void()>& work)> run = [](const auto& work) { return work(), true; };
    /// Called periodically by it: handles messages; false stops it, and then at every call.
    std::function<bool()> goOn = [] { return true; };
};

/// Lets the user split a block into files; returns when the dialog is closed. To close it during a run stops that,
/// after asking; other input is left to `goOn`. Throws what the block does when it is asked for its length and rate.
void ShowSplitDialog(HWND owner, SplitDialogContext context);

}  // namespace quillon
