#pragma once

#include <cstdint>

#include "base/SampleSpan.h"

namespace quillon {

/// Which samples of a block fall on which columns of the strip that shows it, both counted from 0, at a rational number
/// q of samples per column: column c begins at sample floor(c q). The grid begins at the block's first sample, so
/// scrolling never moves a sample to another column.
///
/// With q above 1 the columns divide the samples among themselves. With q of 1 and less a sample fills one or several
/// columns, of which the first one is its place: that is where its point is drawn.
class ColumnGrid {
  public:
    static constexpr std::int64_t kMostParts = std::int64_t{1} << 28;

    /// q = samples / parts: samples from 1 to 2^31 x parts, parts from 1 to kMostParts. A whole number of samples per
    /// column is a grid as well.
    ColumnGrid(std::int64_t samples = 1, std::int64_t parts = 1);  // NOLINT(google-explicit-constructor)

    /// The grid whose columns show the same time of another block that covers the same stretch, with `samples` samples
    /// where this grid's block has `own`: q' = q samples / own. The ratio of the counts is that of the rates wherever a
    /// file stores a whole number of samples of every signal per record; then the samples under a column, of all
    /// blocks, begin with those that hold at the instant at which the column begins. Else the grids part by less than
    /// the blocks do at their ends, a sample of the slower one. Exact as long as q' has terms below 2^63: for PageOf
    /// times a width below 2^15 this holds for samples per record below 2^17.
    [[nodiscard]] ColumnGrid Scaled(std::int64_t samples, std::int64_t own) const;

    /// The first sample of a column. Columns before the first one count as that.
    [[nodiscard]] std::int64_t FirstSample(std::int64_t column) const;
    /// What a column shows, at least one sample; not limited to those of a block, but to 2^31 - 1.
    [[nodiscard]] SampleSpan Samples(std::int64_t column) const;
    /// What some columns show of a block of that many samples; empty behind its end.
    [[nodiscard]] SampleSpan Samples(std::int64_t firstColumn, std::int32_t columns, std::int32_t samples) const;
    /// The first and the last column of a sample: its first one is the only one with q of 1 and above.
    [[nodiscard]] std::int64_t FirstColumn(std::int64_t sample) const;
    [[nodiscard]] std::int64_t LastColumn(std::int64_t sample) const;
    /// The columns of that many samples.
    [[nodiscard]] std::int64_t ColumnCount(std::int64_t samples) const;
    /// Column in which a place between samples lies, drawn on the line from one to the next.
    [[nodiscard]] std::int64_t ColumnOfPlace(double samples) const;

    /// Every sample has at least one column of its own.
    [[nodiscard]] bool ShowsEverySample() const { return m_samples <= m_parts; }
    [[nodiscard]] bool HasColumnsPerSample(std::int64_t columns) const { return m_samples <= m_parts / columns; }
    [[nodiscard]] double SamplesPerColumn() const {
        return static_cast<double>(m_samples) / static_cast<double>(m_parts);
    }
    /// The terms of q, without common factors.
    [[nodiscard]] std::int64_t Dividend() const { return m_samples; }
    [[nodiscard]] std::int64_t Divisor() const { return m_parts; }
    friend bool operator==(const ColumnGrid&, const ColumnGrid&) = default;

  private:
    std::int64_t m_samples;
    std::int64_t m_parts;
};

}  // namespace quillon
