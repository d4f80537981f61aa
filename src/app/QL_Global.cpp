#include "app/QL_Global.h"

#include <exception>
#include <stdexcept>
#include <system_error>

#include "app/StartUp.h"
#include "app/StringIds.h"
#include "base/SystemText.h"
#include "base/Text.h"

namespace quillon {

void ApplyDisplaySettings(QL_Global& global) {
    const DisplaySettings& display = global.settings.display;
    FormatOptions& format = global.format;
    format.unitScaling = display.unitScaling;
    format.digitsCount = display.digitsCount;
    format.digitsAreDecimals = display.digitsType != 0;
    format.timeUnit = display.timeIndex;
    format.timeOfDay = display.timeFormat == 0;
    format.sampleIndexes = display.timeFormat == 2;
    global.view->SetRawCodes(display.scaleFormat == 1);
}

bool Init(QL_Global& global, const StartUpParts& parts, UserServices& services) {
    try {
        global.library = parts.makeLibrary(global.language);
        if (!global.library) throw std::runtime_error("no core library");
        global.document = std::make_unique<Document>(*global.library, services);
        global.view = std::make_unique<WaveformView>(*global.document);
        global.makeSoundOutput = parts.makeSoundOutput;
        global.playback = std::make_unique<Playback>(*global.document, *global.view, services, global.makeSoundOutput);
        ExportSystem system = parts.exportSystem;
        system.language = global.language;
        global.exporter = std::make_unique<KVExport>(services, std::move(system));
        global.openText = parts.openText;
        global.saveDialog = parts.makeSaveDialog();
        global.systemVersion = parts.systemVersion();
        return true;
    } catch (const std::system_error& error) {
        services.ShowMessage(services.Text(IDS_ERROR_NUMBERED) + u' ' + Decimal(error.code().value()) + u": " +
                             WordsOf(error, global.language));
    } catch (const std::exception&) {
        services.ShowMessage(services.Text(IDS_REINSTALL));
    }
    return false;
}

}  // namespace quillon
