#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/Playback.h"
#include "app/Settings.h"
#include "base/Language.h"
#include "data/Document.h"
#include "export/KVExport.h"
#include "export/QL_Export.h"
#include "format/QL_Format.h"
#include "kvsound/SoundOutput.h"
#include "norvik/NorvikCore.h"
#include "norvik/SaveFileDialog.h"
#include "norvik/TextSink.h"
#include "view/WaveformView.h"

namespace quillon {

/// The state that the whole program shares; one object, made by the start-up procedure.
struct QL_Global {
    std::shared_ptr<RecordingLibrary> library;
    std::unique_ptr<Document> document;
    std::unique_ptr<WaveformView> view;
    std::unique_ptr<Playback> playback;
    std::unique_ptr<KVExport> exporter;
    TextSinkFactory openText;
    std::unique_ptr<SaveFileDialog> saveDialog;  ///< shared by all commands that ask for a name
    SoundOutputFactory makeSoundOutput;
    Language language = Language::English;
    /// Major version of the operating system. From 4 on the origins of traces are not folded.
    std::int32_t systemVersion = 0;

    Settings settings;
    std::function<void()> storeRecordings;  ///< stores its recent recordings and the last one; may be empty
    std::u16string helpFile;                ///< path; empty when none is installed

    FormatOptions format;
};

/// Applies the settings for scales and number texts.
void ApplyDisplaySettings(QL_Global& global);

}  // namespace quillon
