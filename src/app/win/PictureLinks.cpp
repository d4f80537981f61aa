#include "app/win/PictureLinks.h"

namespace quillon {

void LinkPictures(const PictureParts& parts) {
    auto& [graph, spectrogram, overview, hover, values, view] = parts;
    hover.onEnd = [&graph = graph] { graph.ShowCursor(std::nullopt); };
    graph.onHover = [&values = values](std::int32_t sample, double place, const std::u16string& mark) {
        values.TellHover(sample, mark, place);
    };
    graph.onMeasured = [&values = values] { return values.Measured(); };
    graph.onBand = [&spectrogram = spectrogram](CommonBand which, const auto& band) {
        spectrogram.ShowBand(which, band);
    };
    spectrogram.onHover = [parts](std::int32_t sample, const std::u16string& text) {
        parts.graph.ShowCursor(PointBand(parts.view.Axis(), sample));
        parts.values.TellSpectrum(sample, text);
    };
    spectrogram.onPointer = [&graph = graph] { return graph.Pointer(); };
    spectrogram.onPress = overview.onPress = [&graph = graph] { SetFocus(graph.Graph()); };
    spectrogram.onBusy = overview.onBusy = graph.onBusy;
    spectrogram.onFailed = overview.onFailed = graph.onFailed;
    overview.onChange = graph.onChange;
}

}  // namespace quillon
