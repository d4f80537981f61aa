#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "data/PathList.h"
#include "export/QL_Export.h"
#include "export/SplitSettings.h"
#include "norvik/RegistryObject.h"
#include "spectrum/SpectrumSettings.h"

namespace quillon {

/// What the user chose, kept between runs. The default values are those of a first run. Numbers are kept as they were
/// stored; who uses one applies its own limits. A flag of 16 bits is set when it is not zero.
struct Settings : SpectrumSettings, SplitSettings {
    std::u16string filesPath;         ///< folder shown last
    std::int16_t helpLanguage = 0;    ///< see ChooseHelpFile
    std::int16_t timeFormat = 0;      ///< 0 time of day, 1 from the start, 2 sample indexes
    std::int32_t timeIndex = 0;       ///< FormatOptions::timeUnit
    std::int16_t scaleFormat = 0;     ///< 0 values, 1 codes
    bool unitScaling = false;         ///< metric prefixes by magnitude, folding in a unit's own (see ChoosePrefix)
    std::int16_t digitsCount = 0;     ///< 0 or less: automatic
    std::int16_t digitsType = 0;      ///< what digitsCount counts: 0 significant digits, else decimal places
    std::int16_t gridColor = 0;       ///< index into the table of colours
    std::int16_t gridStyle = 0;       ///< 0 none, 1 lines, 2 dotted lines
    std::int16_t waveformCursor = 0;  ///< 0 cross, 1 target, 2 hollow target, 3 square
    std::int16_t exportFileType = 0;  ///< 0 a file per channel, 1 a single file
    std::int16_t exportChannels = 0;  ///< 0 or less all channels, else the shown ones
    std::int16_t exportRowSize = 0;   ///< flag
    std::int16_t exportRowRate = 0;   ///< flag
    std::int16_t exportRowStep = 0;   ///< flag
    std::int16_t exportRowHead = 0;   ///< flag
    std::int16_t exportXColumn = 0;   ///< flag
    std::int16_t exportXFormat = 0;   ///< 0 time, else sample number
    std::u16string exportPath;        ///< folder of the last text export
    std::u16string exportFastFile;    ///< file name of the fast export
    PathList pathList;

    std::int32_t windowLeft = 0;  ///< px; the placement is that of the window when it is not maximized
    std::int32_t windowTop = 0;
    std::int32_t windowWidth = 0;  ///< 0: there is no placement yet
    std::int32_t windowHeight = 0;
    bool windowMaximized = false;
    std::int32_t listWidth = 0;           ///< px; 0: the layout's own
    std::int32_t upperPercent = 0;        ///< share of the upper list; 0: the layout's own
    std::int32_t valuesHeight = 0;        ///< px; 0: the layout's own
    std::int32_t spectrogramPercent = 0;  ///< share of the graph's height; 0: the layout's own
    bool spectrogramShown = false;
};

/// Whose settings they are.
struct ProgramIdentity {
    std::u16string name = u"Quillon";
    std::int16_t majorVersion = QUILLON_VERSION_MAJOR;
    std::int16_t minorVersion = QUILLON_VERSION_MINOR;
    std::int16_t revision = QUILLON_VERSION_REVISION;
};

/// Loads and saves the settings in the current user's hive below Software\Norvik\<name>\<major version>.x, the values
/// of the spectrum and of the main window in subkeys. Owns the registry object, which is made on first use. A failure
/// of the registry ends neither a load nor a save; the values that it does not concern are read and written.
class SettingsStore {
  public:
    using MakeRegistry = std::function<std::unique_ptr<RegistryObject>()>;
    SettingsStore(MakeRegistry makeRegistry, ProgramIdentity program);

    /// Leaves as it is what is not stored or cannot be used.
    void Load(Settings& settings);
    /// Returns whether everything was written.
    bool Save(const Settings& settings);

  private:
    /// Opens the main key, or a subkey given with its backslash; false when that fails.
    bool Open(const std::u16string& subkey);

    MakeRegistry m_makeRegistry;
    ProgramIdentity m_program;
    std::unique_ptr<RegistryObject> m_registry;
    std::u16string m_keyPath;
};

/// What the settings say about text exports.
[[nodiscard]] TextExportSettings TextSettings(const Settings& settings);

}  // namespace quillon
