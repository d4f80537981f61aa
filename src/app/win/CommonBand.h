#pragma once

namespace quillon {

/// Bands that span graph and spectrogram.
enum class CommonBand { Cursor, Play, Count };

}  // namespace quillon
