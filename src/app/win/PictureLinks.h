#pragma once

#include "app/ValuesReadout.h"
#include "app/win/GraphPane.h"
#include "app/win/HoverCapture.h"
#include "app/win/OverviewPane.h"
#include "app/win/SpectrogramPane.h"

namespace quillon {

/// The pictures of the main window and what they share; all outlive the links between them.
struct PictureParts {
    GraphPane& graph;
    SpectrogramPane& spectrogram;
    OverviewPane& overview;
    HoverCapture& hover;
    ValuesReadout& values;
    const WaveformView& view;
};

/// Links the pictures: readouts and bands span graph and spectrogram, and what the graph reports the others report too.
/// To be called when onChange, onBusy and onFailed of the graph are set.
void LinkPictures(const PictureParts& parts);

}  // namespace quillon
