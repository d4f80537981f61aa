#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Density.h"
#include "base/Language.h"
#include "base/SampleSpan.h"
#include "format/QL_Format.h"
#include "view/GraphPicture.h"
#include "view/LaneLabels.h"
#include "view/WaveformView.h"

/// A picture of a view for a report: the graph, what it shows and when above it, titles and scales of the lanes beside
/// it, the time below it. What stands where is decided here, for any font; who has the font draws it.
namespace quillon {

/// A filled rectangle in pixels; `right` and `end` are behind the last ones.
struct ReportBox {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t end = 0;
    std::uint32_t color = 0;  ///< 0xRRGGBB
};

struct ReportText {
    std::u16string text;
    std::int32_t x = 0;  ///< left
    std::int32_t y = 0;  ///< top
    std::uint32_t color = 0;
    std::optional<std::uint32_t> outline{};  ///< colour around the letters, which keeps them readable over traces
};

/// What is drawn, the boxes first, each in its order.
struct ReportPlan {
    std::vector<ReportBox> boxes;
    std::vector<ReportText> texts;
};

/// How texts are written.
struct ReportStyle {
    int dpi = 96;
    FormatOptions format;
    /// Pixels of a text; the height is that of a line, whatever the text.
    std::function<TextSize(const std::u16string&)> sizeOf;
    GraphLook look{};  ///< its line width is in pixels of the picture
};

/// Pixels on the four sides of the graph.
struct ReportMargins {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
};

/// What stands above the graph, one behind the other; those without a text are left out.
using ReportHeading = std::vector<std::u16string>;

/// File, block where there are several, from when to when `samples` are, how long, and `shown`, which tells of filters
/// and reference.
[[nodiscard]] ReportHeading MakeReportHeading(const Document& document, const SampleSpan& samples,
                                              const std::u16string& shown, const FormatOptions& format,
                                              Language language);

/// Places of the parts of a report.
class ReportLayout {
  public:
    ReportLayout(ReportStyle style, ReportHeading heading);
    [[nodiscard]] const ReportStyle& Style() const { return m_style; }

    /// Room that a picture of that size leaves around the graph of the view. The strip of the lanes takes a third of
    /// the width at most.
    [[nodiscard]] ReportMargins MarginsFor(const WaveformView& view, const Document& document, TextSize picture) const;
    /// Rows of a picture of that width in which no lane is lower than its title and bar, and those of lanes that are
    /// comfortable to read.
    [[nodiscard]] std::int32_t LeastHeight(const WaveformView& view, std::int32_t width) const;
    [[nodiscard]] std::int32_t WantedHeight(const WaveformView& view, std::int32_t width) const;
    /// Everything around the graph of a view that is arranged in these margins.
    [[nodiscard]] ReportPlan Frame(const WaveformView& view, const Document& document,
                                   const ReportMargins& margins) const;
    /// The texts of the marks whose lines the graph shows, in its pixels.
    [[nodiscard]] ReportPlan MarkTexts(const GraphScene& scene) const;

  private:
    [[nodiscard]] std::int32_t Scaled(int length) const { return ScaledTo(m_style.dpi, length); }
    [[nodiscard]] const GraphColors& Colors() const { return *m_style.look.colors; }
    [[nodiscard]] LaneStrip Strip(const WaveformView& view, std::int32_t width) const;
    [[nodiscard]] std::int32_t HeightWithLanes(const WaveformView& view, std::int32_t width, std::int32_t rows) const;
    [[nodiscard]] std::int32_t StripWidth(const WaveformView& view, const Document& document, std::int32_t rows) const;
    /// The heading in lines of the picture's width.
    [[nodiscard]] std::vector<ReportText> HeadingTexts(std::int32_t width) const;
    [[nodiscard]] std::int32_t HeadingHeight(std::int32_t width) const;
    [[nodiscard]] std::int32_t TimesHeight() const;  ///< of the scale of times below the graph
    void AddLanes(const WaveformView& view, const ReportMargins& margins, ReportPlan& plan) const;
    void AddOneAxis(const WaveformView& view, const Document& document, const ReportMargins& margins,
                    ReportPlan& plan) const;
    void AddTimes(const WaveformView& view, const Document& document, const ReportMargins& margins,
                  ReportPlan& plan) const;
    void AddBorder(const WaveformView& view, const ReportMargins& margins, ReportPlan& plan) const;

    ReportStyle m_style;
    ReportHeading m_heading;
    std::int32_t m_line;  ///< rows of a text
};

}  // namespace quillon
