#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/Settings.h"
#include "data/Document.h"
#include "view/Readout.h"
#include "view/WaveformView.h"

namespace quillon {

/// What the panel of values says: the description of the recording, or what was read out last, as long as that is true.
class ValuesReadout {
  public:
    /// All outlive it.
    ValuesReadout(const Document& document, const WaveformView& view, const FormatOptions& format,
                  const Settings& settings)
        : m_document(document), m_view(view), m_format(format), m_settings(settings) {}

    std::function<void(const std::u16string& text)> onText;  ///< to be shown; set by the owner

    void TellDetails() { Tell(Kind::Details, m_document.File().fileInfo); }
    /// The values at a sample, below the text of the mark under the pointer.
    void TellHover(std::int32_t sample, const std::u16string& mark);
    void TellSpectrum(const std::u16string& text) { Tell(Kind::Spectrum, text); }
    /// The values of the selection.
    void TellRange();
    /// The selection has changed: what was told of it is told anew, or no more. `moved`: it is to be read out.
    void SelectionChanged(bool moved);
    /// Where a selection starts, what was told of the one before is not so any longer.
    void SelectionStarted();
    /// Tells anew, or no more, what is not so since shown channels or options have changed.
    void KeepTrue();

  private:
    enum class Kind { Details, Hover, Spectrum, Range };
    /// What a readout was made from.
    struct Basis {
        std::vector<std::int16_t> channels;  ///< shown ones
        FormatOptions format;
        bool rawCodes = false;
        SpectrumSettings spectrum;
        std::int16_t spectrumChannel = 0;
        bool spectrogramShown = false;
        friend bool operator==(const Basis&, const Basis&) = default;
    };
    [[nodiscard]] Basis PresentBasis() const;
    [[nodiscard]] ReadoutSource Source() const;
    void Tell(Kind kind, const std::u16string& text);

    const Document& m_document;
    const WaveformView& m_view;
    const FormatOptions& m_format;
    const Settings& m_settings;
    Kind m_kind = Kind::Details;
    Basis m_basis;
    std::int32_t m_hoverSample = 0;
    std::u16string m_hoverMark;
};

}  // namespace quillon
