#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/Settings.h"
#include "base/Language.h"
#include "data/Document.h"
#include "view/Measurement.h"
#include "view/Readout.h"
#include "view/WaveformView.h"

namespace quillon {

/// Content of the values panel: the description of the recording, or the last readout as long as it is up to date.
class ValuesReadout {
  public:
    /// All arguments must outlive this object.
    ValuesReadout(const Document& document, const WaveformView& view, const FormatOptions& format,
                  const Settings& settings, const UserServices& services, Language language)
        : m_document(document),
          m_view(view),
          m_format(format),
          m_settings(settings),
          m_services(services),
          m_language(language) {}

    std::function<void(const std::u16string& text)> onText;  ///< to be shown; set by the owner

    /// What kind of recording it is, and whether it has signals that are not shown.
    void TellDetails();
    /// The values at a sample, below the text of the mark under the pointer; while a sample is pinned, also what
    /// differs from there, which then stays until the pin is removed. `place`: exactly where it is pointed to, see
    /// PlaceUnder; signals of other blocks are read out there.
    void TellHover(std::int32_t sample, const std::u16string& mark, std::optional<double> place = {});
    /// What the spectrogram has at a sample.
    void TellSpectrum(std::int32_t sample, const std::u16string& text) {
        m_hoverSample = sample;
        Tell(Kind::Spectrum, text);
    }
    /// The values of the selection.
    void TellRange();
    /// The selection has changed: updates or removes its readout. `moved`: shows a readout in any case.
    void SelectionChanged(bool moved);
    /// A new selection starts: removes the readout of the previous one.
    void SelectionStarted();
    /// More of the block is known: completes the readout of a range.
    void MoreKnown();
    /// The description of the recording has changed.
    void DetailsChanged() {
        if (m_kind == Kind::Details) TellDetails();
    }
    /// The values of the samples have changed: updates or removes the readout.
    void BlockChanged();
    /// What is to be drawn of the pinned sample and the one read out last.
    [[nodiscard]] std::optional<Measurement> Measured() const;
    /// Whether the readout of a range lacks what is not known yet.
    [[nodiscard]] bool IsIncomplete() const { return m_kind == Kind::Range && m_incomplete; }
    /// Shown channels, options or the view have changed: updates or removes the readout, also that of a sample which is
    /// not visible any more.
    void KeepTrue();

  private:
    enum class Kind { Details, Hover, Spectrum, Range };
    /// Input of a readout.
    struct Basis {
        std::vector<std::int16_t> signals;  ///< shown ones
        FormatOptions format;
        bool rawCodes = false;
        SpectrumSettings spectrum;
        std::int16_t spectrumChannel = 0;
        bool spectrogramShown = false;
        bool titles = false;
        std::int32_t pinned = 0;
        friend bool operator==(const Basis&, const Basis&) = default;
    };
    [[nodiscard]] Basis PresentBasis() const;
    [[nodiscard]] ReadoutSource Source() const;
    /// What is shown, in the order of the readout: in lanes those that are visible come first.
    [[nodiscard]] std::vector<std::int16_t> ShownSignals() const;
    /// A line that says how the signals are shown; empty where they are as they are stored.
    [[nodiscard]] std::u16string Heading() const;
    void Tell(Kind kind, const std::u16string& text);

    const Document& m_document;
    const WaveformView& m_view;
    const FormatOptions& m_format;
    const Settings& m_settings;
    const UserServices& m_services;
    Language m_language;
    Kind m_kind = Kind::Details;
    Basis m_basis;
    bool m_incomplete = false;       ///< see IsIncomplete; of the last range
    std::int32_t m_hoverSample = 0;  ///< of a readout under the pointer
    std::u16string m_hoverMark;
    std::optional<double> m_hoverPlace;
};

}  // namespace quillon
