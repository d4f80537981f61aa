#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "app/Settings.h"
#include "base/Language.h"
#include "data/NorvikCore.h"
#include "data/QL_Types.h"
#include "format/QL_Format.h"
#include "view/AmplitudeScale.h"
#include "view/DataRange.h"
#include "view/TimeAxis.h"

namespace quillon {

/// The state that the whole program shares; one object, made by the start-up procedure.
struct QL_Global {
    std::shared_ptr<RecordingLibrary> library;
    Language language = Language::English;
    /// Major version of the operating system. From 4 on traces are stroked as paths and origins are not folded.
    std::int32_t systemVersion = 0;

    Settings settings;
    std::u16string helpFile;  ///< path; empty when none is installed

    ViewFile file;
    bool fileSelected = false;  ///< the file list has a selection, whether or not it could be opened
    ViewBlock block;
    ChannelSlots slots;

    TimeAxis axis;
    AmplitudeScale amplitude;
    RangeRecords ranges;
    bool rawCodes = false;
    FormatOptions format;
};

}  // namespace quillon
