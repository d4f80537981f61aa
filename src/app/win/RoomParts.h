#pragma once

#include <functional>

#include "app/Playback.h"
#include "app/Settings.h"
#include "app/win/WinServices.h"
#include "base/Language.h"
#include "data/Document.h"
#include "export/KVExport.h"
#include "norvik/SaveFileDialog.h"
#include "norvik/TextSink.h"
#include "view/WaveformView.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// What the rooms of the main window work with; all outlive them.
struct RoomParts {
    Document& document;
    WaveformView& view;
    Playback& playback;
    Settings& settings;
    const ScreenDensity& density;  ///< of the main window
    const FormatOptions& format;
    RecordingLibrary& library;
    KVExport& exporter;
    SaveFileDialog& saveDialog;
    const TextSinkFactory& openText;
    Language language;
    bool foldOrigin;  ///< see TraceGeometry
    WinServices& services;
    std::function<void()> applySettings;           ///< what the user chose about scales and texts takes effect
    const std::function<void()>& storeRecordings;  ///< see QL_Global
};

}  // namespace quillon
