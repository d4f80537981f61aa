#pragma once

#include <functional>

#include <memory>
#include <string>

#include "app/Settings.h"
#include "base/Language.h"
#include "data/UserServices.h"
#include "export/KVExport.h"
#include "kvsound/SoundOutput.h"
#include "norvik/NorvikCore.h"
#include "norvik/SaveFileDialog.h"
#include "norvik/TextSink.h"
#include "norvik/TimerObject.h"

namespace quillon {

struct QL_Global;

/// Factories of the core library's objects; the start-up procedure passes the real ones.
struct StartUpParts {
    std::function<std::shared_ptr<RecordingLibrary>(Language)> makeLibrary;
    std::function<std::int32_t()> systemVersion;
    SettingsStore::MakeRegistry makeRegistry;
    ProgramIdentity program;
    TimerFactory makeTimer;
    ExportSystem exportSystem;
    TextSinkFactory openText;
    std::function<std::unique_ptr<SaveFileDialog>()> makeSaveDialog;
    SoundOutputFactory makeSoundOutput;
    std::u16string path = {};  ///< absolute path of a file or folder to be opened at the start; empty: none
    std::u16string crashFile =
        {};  ///< what a crash of an earlier run leaves, see TakeCrashFile; empty: none is looked for
};

/// Creates the process-wide objects. On a failure a message is shown (a numbered error by its number, any other as a
/// damaged installation) and false is returned: the program then ends without a window.
[[nodiscard]] bool Init(QL_Global& global, const StartUpParts& parts, UserServices& services);

}  // namespace quillon
