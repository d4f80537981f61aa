#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/RecentRecordings.h"
#include "app/SpectrumWindowSettings.h"
#include "app/WindowPlacement.h"
#include "data/PathList.h"
#include "export/SplitSettings.h"
#include "export/TextExportSettings.h"
#include "norvik/RegistryObject.h"
#include "spectrum/SpectrumSettings.h"
#include "view/DisplaySettings.h"

namespace quillon {

/// User settings, stored between runs. The default values apply to a first run.
struct Settings {
    std::u16string filesPath;       ///< folder shown last
    std::int16_t helpLanguage = 0;  ///< see ChooseHelpFile
    PathList pathList;
    DisplaySettings display;
    TextExportSettings text;
    SplitSettings split;
    SpectrumSettings spectrum;
    WindowPlacement window;
    RecentRecordings recent;
    LastRecording last;
    SpectrumWindowSettings spectrumWindow;
};

/// Program whose settings are stored.
struct ProgramIdentity {
    std::u16string name = u"Quillon";
    std::int16_t majorVersion = QUILLON_VERSION_MAJOR;
    std::int16_t minorVersion = QUILLON_VERSION_MINOR;
    std::int16_t revision = QUILLON_VERSION_REVISION;
};

/// Loads and saves the settings in the current user's hive below Software\Norvik\<name>\<major version>.x, the values
/// of the spectrum and of the main window in subkeys. Owns the registry object, which is made on first use. A failing
/// registry access does not end a load or save; all other values are still read or written.
class SettingsStore {
  public:
    using MakeRegistry = std::function<std::unique_ptr<RegistryObject>()>;
    SettingsStore(MakeRegistry makeRegistry, ProgramIdentity program);

    /// Values that are not stored or invalid are left unchanged.
    void Load(Settings& settings);
    /// Returns whether everything was written.
    bool Save(const Settings& settings);
    /// The same for the recent recordings and the last one alone.
    bool SaveRecordings(const Settings& settings);

  private:
    /// Opens the main key, or a subkey given with its backslash; false when that fails.
    bool Open(const std::u16string& subkey);

    MakeRegistry m_makeRegistry;
    ProgramIdentity m_program;
    std::unique_ptr<RegistryObject> m_registry;
    std::u16string m_keyPath;
};

}  // namespace quillon
