#include "spectrum/AnalysisWindow.h"

#include <cstddef>

#include "nsp/Spectrum.h"

namespace quillon {

std::vector<float> AnalysisWindow(std::int16_t kind, std::int32_t length) {
    std::vector<float> window(static_cast<std::size_t>(length), 1.0F);
    switch (kind) {
        case 1: nsp::nspsWinBartlett(window.data(), length); break;
        case 2: nsp::nspsWinHann(window.data(), length); break;
        case 3: nsp::nspsWinHamming(window.data(), length); break;
        default: nsp::nspsWinBlackmanStd(window.data(), length); break;
    }
    return window;
}

}  // namespace quillon
