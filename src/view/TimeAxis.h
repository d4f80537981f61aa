#pragma once

#include <cstdint>
#include <optional>

#include "base/SampleSpan.h"
#include "view/ColumnGrid.h"
#include "view/PageLength.h"

namespace quillon {

/// Which part of the block the graph shows and how many samples fall on one pixel column.
///
/// The whole block drawn at the current zoom is a strip of columns counted from 0; the graph shows the columns from
/// FirstColumn on. FirstColumn stays within 0 .. StripLength.
///
/// The zoom is an entry of a table of whole numbers of samples per pixel or, on a free axis, any page length: the
/// samples that fill the graph's width. A page is then kept when the width changes, and its length in seconds when
/// another block is set; it runs from a fiftieth of a sample per column, at least a sample, to the whole block; no
/// strip has more than 2^31 - 1 columns.
class TimeAxis {
  public:
    static constexpr int kZoomCount = 28;              ///< 1, 2, 5, 10, ... 1 000 000 000 samples per pixel
    static constexpr int kMenuZoomCount = 11;          ///< the zooms offered: 1 to 2000 samples per pixel
    static constexpr std::int32_t kDivision = 100;     ///< pixels of one grid division
    static constexpr std::int32_t kScrollMax = 32767;  ///< the scroll bar's largest value
    static constexpr std::int32_t kMostColumnsPerSample = 50;
    static constexpr double kFirstPage = 10.0;  ///< seconds of a free axis before a page was chosen

    [[nodiscard]] static std::int32_t TableEntry(int index);

    /// A newly loaded block: its first column is shown, the zoom stays if it is one of the menu's, else becomes the
    /// coarsest of these. A free axis shows the page chosen last, as far as the block reaches. Pages of a block without
    /// a rate count samples as seconds. `fastest`: samples of the fastest block of which signals are shown together
    /// with this one, where that is another one; the shortest page is that of its samples.
    void SetBlock(std::int32_t sampleCount, double sampleRate = 0.0, bool free = false, std::int32_t fastest = 0);
    /// The same for another block of the same stretch: on a free axis the columns show the same time as before.
    void SwitchBlock(std::int32_t sampleCount, double sampleRate, std::int32_t fastest);
    void SetFastest(std::int32_t fastest);
    void SetWidth(std::int32_t pixels);
    /// A free axis takes over the zoom exactly, also when the width changes before a page is chosen; back from it the
    /// nearest zoom of the table is selected. Where that is still selected, the next free axis has the page again, and
    /// the same first column unless the view has been scrolled.
    void SetFree(bool free);
    [[nodiscard]] bool IsFree() const { return m_free; }

    /// -1 at a zoom of a free axis that the table does not have.
    [[nodiscard]] int ZoomIndex() const;
    /// Of the table's zoom.
    [[nodiscard]] std::int32_t SamplesPerPixel() const { return TableEntry(m_zoom); }
    /// Which samples fall on which columns of the strip.
    [[nodiscard]] const ColumnGrid& Grid() const { return m_grid; }
    [[nodiscard]] std::int32_t FirstColumn() const { return m_first; }
    [[nodiscard]] std::int32_t StripLength() const { return m_length; }
    [[nodiscard]] std::int32_t Width() const { return m_width; }
    [[nodiscard]] std::int32_t SampleCount() const { return m_samples; }
    /// Pixel column of the graph at which a sample begins (from 0); it may lie outside the graph.
    [[nodiscard]] std::int32_t ColumnOf(std::int32_t sample) const {
        return static_cast<std::int32_t>(m_grid.FirstColumn(sample) - m_first);
    }
    /// The last one that shows it.
    [[nodiscard]] std::int32_t LastColumnOf(std::int32_t sample) const {
        return static_cast<std::int32_t>(m_grid.LastColumn(sample) - m_first);
    }
    /// The samples that the graph shows; empty if it is past the last one.
    [[nodiscard]] SampleSpan Visible() const;
    /// Seconds that the graph's width stands for.
    [[nodiscard]] double PageSeconds() const;
    /// The page chosen last, which other blocks begin with; 0 before one was chosen.
    [[nodiscard]] double ChosenPage() const { return m_chosen; }
    /// Whether zooming has an effect.
    [[nodiscard]] bool CanZoom(bool in) const;

    /// Selects a zoom of the table and keeps the sample in the middle of the graph in place, as far as the strip
    /// allows. False when nothing changes.
    bool SelectZoom(int index);
    /// Selects a zoom and keeps the sample under a pixel column in place, as far as the strip allows.
    bool SelectZoomAbout(int index, std::int32_t column);
    /// The same on a free axis: a page shorter by that many steps, longer for less than 0, see NextPage; and a page of
    /// that many seconds. What is chosen so is shown of other blocks too, also without a block or a free axis now.
    /// A sample to be kept in place (from 1; 0: none) goes before the column.
    bool ZoomAbout(int steps, std::int32_t column, std::int32_t kept = 0);
    bool SelectPage(double seconds, std::int32_t column, std::int32_t kept = 0);
    /// Shows a range of at least one sample, centred, at the finest zoom at which it fits; on a free axis it fills the
    /// width, which may show a column more of its neighbours.
    void ShowSamples(const SampleSpan& samples);

    /// A view, restored exactly.
    struct Place {
        bool free = false;
        int zoom = 0;
        PageSamples page{};   ///< of a free axis
        double chosen = 0.0;  ///< page in seconds for other blocks; 0: none
        std::int32_t first = 0;
        std::int32_t width = 0;  ///< of a free axis, to which `first` belongs
        friend bool operator==(const Place&, const Place&) = default;
    };
    [[nodiscard]] Place GetPlace() const;
    /// Clamped to the current limits.
    void Restore(const Place& place);
    /// On the axis of the table.
    void Restore(int zoom, std::int32_t firstColumn);

    /// Scrolls by columns, clamped to the strip; returns the columns actually scrolled.
    std::int32_t ScrollBy(std::int32_t shift);
    /// Shift of a page command: 0 start, 1 previous page, 2 next page, 3 end. A page is a whole number of divisions; on
    /// a free axis it is the graph's width, and the last page is that which paging from the present one reaches.
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
    [[nodiscard]] bool CanScroll() const { return m_length >= 2 && (!m_free || m_length > m_width || m_first > 0); }

  private:
    bool MoveTo(std::int64_t column);
    /// The first column at the end of the scroll bar: on a free axis the graph is full there.
    [[nodiscard]] std::int32_t LastScrolled() const;
    void SetGrid(const ColumnGrid& grid);
    void TakeOver();
    bool TakeBack();
    [[nodiscard]] double MiddleSample() const;
    void CentreOn(double sample);
    void SetZoom(int index);
    void SetPage(const PageSamples& page);
    void FillWith(const SampleSpan& samples);
    bool SetPageAbout(const PageSamples& page, std::int32_t column, std::int32_t kept);
    /// In samples, so that the strip is not too long.
    [[nodiscard]] double LeastPage() const;
    /// Samples of the block for one of the fastest.
    [[nodiscard]] double ShareOfFastest() const;
    [[nodiscard]] PageSamples PageWithinLimits(double samples) const;
    [[nodiscard]] int NearestZoom() const;

    std::int32_t m_samples = 0;
    std::int32_t m_fastest = 0;  ///< at least m_samples
    double m_rate = 1.0;         ///< samples per second of a page
    std::int32_t m_width = 1;
    std::int32_t m_first = 0;
    std::int32_t m_length = 0;
    int m_zoom = 0;
    ColumnGrid m_grid;
    bool m_free = false;
    bool m_takenOver = false;  ///< the page is the width at the table's zoom
    PageSamples m_page;
    double m_chosen = 0.0;
    /// A free axis that was left for the table, and what it became there.
    struct Left {
        Place free;
        Place table;
    };
    std::optional<Left> m_left;
};

}  // namespace quillon
