#pragma once

#include <cstdint>

#include "base/SampleSpan.h"

namespace quillon {

/// Which part of the block the graph shows and how many samples fall on one pixel column.
///
/// The whole block drawn at the current zoom is a strip of columns counted from 0; the graph shows the columns from
/// FirstColumn on. FirstColumn stays within 0 .. StripLength.
class TimeAxis {
  public:
    static constexpr int kZoomCount = 28;              ///< 1, 2, 5, 10, ... 1 000 000 000 samples per pixel
    static constexpr int kMenuZoomCount = 11;          ///< the zooms offered: 1 to 2000 samples per pixel
    static constexpr std::int32_t kDivision = 100;     ///< pixels of one grid division
    static constexpr std::int32_t kScrollMax = 32767;  ///< the scroll bar's largest value

    [[nodiscard]] static std::int32_t TableEntry(int index);

    /// A newly loaded block: its first column is shown, the zoom stays if it is one of the menu's, else becomes the
    /// coarsest of these.
    void SetBlock(std::int32_t sampleCount);
    void SetWidth(std::int32_t pixels);

    [[nodiscard]] int ZoomIndex() const { return m_zoom; }
    [[nodiscard]] std::int32_t SamplesPerPixel() const { return TableEntry(m_zoom); }
    [[nodiscard]] std::int32_t FirstColumn() const { return m_first; }
    [[nodiscard]] std::int32_t StripLength() const { return m_length; }
    [[nodiscard]] std::int32_t Width() const { return m_width; }
    [[nodiscard]] std::int32_t SampleCount() const { return m_samples; }
    /// Pixel column of the graph that shows a sample (from 0); it may lie outside the graph.
    [[nodiscard]] std::int32_t ColumnOf(std::int32_t sample) const { return sample / SamplesPerPixel() - m_first; }
    /// The samples that the graph shows; empty if it is past the last one.
    [[nodiscard]] SampleSpan Visible() const;

    /// Selects a zoom and keeps the sample in the middle of the graph in place, as far as the strip allows.
    /// False when nothing changes.
    bool SelectZoom(int index);
    /// Selects a zoom and keeps the sample under a pixel column in place, as far as the strip allows.
    bool SelectZoomAbout(int index, std::int32_t column);
    /// Shows a range of at least one sample, centred, at the finest zoom at which it fits.
    void ShowSamples(const SampleSpan& samples);
    /// Restores a view, clamped to the current limits.
    void Restore(int zoom, std::int32_t firstColumn);
    /// Scrolls by columns, clamped to the strip; returns the columns actually scrolled.
    std::int32_t ScrollBy(std::int32_t shift);
    /// Shift of a page command: 0 start, 1 previous page, 2 next page, 3 end. A page is a whole number of divisions.
    [[nodiscard]] std::int32_t PageShift(int command) const;

    /// Shift that brings a sample (from 1) to the middle of the graph, without leaving the strip.
    [[nodiscard]] std::int32_t ShiftTo(std::int32_t sample) const;

    /// The scroll bar's value for the current position: the position's share of the strip, 0 to kScrollMax.
    [[nodiscard]] std::int32_t ScrollValue() const;
    /// Moves the view to a scroll bar value; false when the position is the same.
    bool SetScrollValue(std::int32_t value);
    /// Size of the scroll bar's thumb in its own units, so that it shows the visible share.
    [[nodiscard]] std::int32_t ScrollPage() const;
    /// Whether there is anything to scroll.
    [[nodiscard]] bool CanScroll() const { return m_length >= 2; }

  private:
    bool MoveTo(std::int64_t column);
    void SetZoom(int index);

    std::int32_t m_samples = 0;
    std::int32_t m_width = 1;
    std::int32_t m_first = 0;
    std::int32_t m_length = 0;
    int m_zoom = 0;
};

}  // namespace quillon
