#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "view/WaveformView.h"

namespace quillon {

/// Where the window stood in a recording, stored as a text between runs: block, time axis, scale of one axis,
/// selection and pinned sample. Lanes are remembered by themselves, see LaneCommands.
struct LastPlace {
    std::int16_t block = 0;  ///< from 0
    WaveformView::State view;
};

/// Fields with whole numbers: "block=0;zoom=3;first=1000;scale=8;shift=33;page=7168,1,672;selection=12001,12400;
/// pinned=13361". The page (samples, parts, columns of the graph) is that of a free axis; selection and pinned sample
/// are left out where there is none.
[[nodiscard]] std::u16string TextOf(const LastPlace& place);

/// Of such a text; what it does not hold is as `present`, without history. Fields of unknown names are passed over, so
/// that what the view keeps may grow by fields that are optional. None where a number is missing or impossible: the
/// recording is then shown from its start.
[[nodiscard]] std::optional<LastPlace> LastPlaceOf(std::u16string_view text, const WaveformView::State& present);

/// Whether the open recording is known up to the place; else reading on may find it.
[[nodiscard]] bool IsKnown(const LastPlace& place, const Document& document);

/// Whether the view shows the start of a recording as it was opened: nothing was chosen since.
[[nodiscard]] bool IsAtStart(const Document& document, const WaveformView& view);

}  // namespace quillon
