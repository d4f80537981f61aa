#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Language.h"
#include "data/Document.h"
#include "data/UserServices.h"
#include "format/QL_Format.h"
#include "spectrum/Peaks.h"
#include "spectrum/SpectrumPlot.h"
#include "spectrum/Welch.h"
#include "view/WaveformView.h"

namespace quillon {

/// What the user chose about averaged spectra.
struct SpectrumChoices {
    std::int16_t signal = 0;  ///< as Document counts them; 0: all that are shown
    std::int32_t length = 0;  ///< samples of a segment; 0: one that suits the range
    std::int16_t window = 0;  ///< as SpectrumSettings::window
    PlotScales scales{};
    friend bool operator==(const SpectrumChoices&, const SpectrumChoices&) = default;
};

/// Averaged spectra of the shown signals, as they are shown: of the selection, else of the visible part. They are made
/// in steps, and stay as they are until they are asked for anew.
class SpectrumCommands {
  public:
    /// All arguments must outlive this object.
    SpectrumCommands(const Document& document, const WaveformView& view, const FormatOptions& format,
                     const UserServices& services, Language language)
        : m_document(document), m_view(view), m_format(format), m_services(services), m_language(language) {}

    // To be set by the owner.
    std::function<void(const std::function<bool()>& step, const std::function<double()>& share)> onWork;
    std::function<void()> onWorkEnd;  ///< the steps are no longer wanted

    /// Begins anew with what is selected or seen now.
    void Analyse();
    /// Whether these choices need spectra other than those that there are.
    bool SetChoices(const SpectrumChoices& choices);
    /// What was analysed is about to go, or no longer wanted.
    void Leave();
    /// Takes over what has been found since; returns whether that was anything.
    bool Update();

    [[nodiscard]] const SpectrumChoices& Choices() const { return m_choices; }
    [[nodiscard]] bool IsDone() const { return m_passes.empty(); }
    /// Whether another range or other signals are shown now than those of the spectra.
    [[nodiscard]] bool IsOutdated() const;
    /// Whether the signals are shown otherwise now, so that there are other samples.
    [[nodiscard]] bool IsOfOtherBlock() const { return m_document.Block().block.get() != m_basis.block; }
    [[nodiscard]] const std::vector<PlotTrace>& Traces() const { return m_traces; }
    /// Why there are no spectra; empty where there are.
    [[nodiscard]] const std::u16string& Refusal() const { return m_refusal; }

    /// The signals to choose from: those that are shown.
    [[nodiscard]] std::vector<std::int16_t> Signals() const;
    [[nodiscard]] std::u16string TitleOf(std::int16_t signal) const;
    /// The lengths to choose from: those that fit into the range. The first one is 0.
    [[nodiscard]] std::vector<std::int32_t> Lengths() const;
    /// "1024 (0.25 Hz)"
    [[nodiscard]] std::u16string LengthText(std::int32_t length) const;
    /// "Spectrum - 0.5-35 Hz"
    [[nodiscard]] std::u16string Title() const;
    /// The range, and what was averaged.
    [[nodiscard]] std::u16string Heading() const;

    /// The trace whose peaks are listed; below the number of traces unless there are none.
    [[nodiscard]] std::size_t PeakTrace() const { return m_peakTrace; }
    void ListPeaksOf(std::size_t trace);
    [[nodiscard]] const std::vector<SpectralPeak>& Peaks() const { return m_peaks; }
    /// Finds the harmonics of one of the peaks, or of none.
    void ChoosePeak(std::optional<std::size_t> peak);
    [[nodiscard]] std::optional<std::size_t> ChosenPeak() const { return m_peak; }
    [[nodiscard]] const Harmonics& HarmonicsOfPeak() const { return m_harmonics; }
    /// "Harmonics of 50 Hz: distortion 3.2 %"; else what is missing for them.
    [[nodiscard]] std::u16string HarmonicsHeading(const SpectrumPlot& plot) const;

    /// All spectra as a table of text, in decibels where these are shown.
    [[nodiscard]] std::u16string TableText() const;

  private:
    /// What spectra depend on.
    struct Basis {
        const RecordingBlock* block = nullptr;  ///< of the axis
        SampleSpan samples{};                   ///< of it
        std::vector<std::int16_t> signals{};
        friend bool operator==(const Basis&, const Basis&) = default;
    };
    struct Running {
        std::unique_ptr<WelchPass> pass;
        std::vector<std::size_t> traces;  ///< in the order of its results
    };
    [[nodiscard]] Basis Present() const;
    [[nodiscard]] std::int32_t Length() const;
    void StartPasses();
    bool Step();
    [[nodiscard]] double Share() const;
    void FindPeaksAnew();

    const Document& m_document;
    const WaveformView& m_view;
    const FormatOptions& m_format;
    const UserServices& m_services;
    Language m_language;
    SpectrumChoices m_choices;
    Basis m_basis;
    std::u16string m_shownAs;       ///< how the signals are shown, see ShownTexts
    std::vector<Running> m_passes;  ///< one per block; none when all is taken over
    double m_taken = 0.0;           ///< share of them that is taken over
    std::vector<PlotTrace> m_traces;
    std::u16string m_refusal;
    std::size_t m_peakTrace = 0;
    std::vector<SpectralPeak> m_peaks;
    std::optional<std::size_t> m_peak;
    double m_peakFrequency = 0.0;
    Harmonics m_harmonics;
};

}  // namespace quillon
