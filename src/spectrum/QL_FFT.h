#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "norvik/NorvikCore.h"
#include "nsp/SpectrumBatch.h"
#include "spectrum/Palette.h"
#include "spectrum/SpectrumSettings.h"
#include "view/AmplitudeScale.h"
#include "view/ColumnGrid.h"

namespace quillon {

/// What the image shows.
struct SpectrumState {
    bool ready = false;              ///< a channel was accepted; nothing is drawn before
    std::int16_t blockNumber = 0;    ///< of the recording, from 0
    std::int16_t channelIndex = 0;   ///< position in the block, from 0
    std::int16_t deviceChannel = 0;  ///< acquisition number
    std::int32_t sampleCount = 0;
    std::int32_t firstColumn = 0;  ///< of the strip that column 0 shows
    std::int32_t columnCount = 0;  ///< columns that hold valid spectra; 0: none
    ColumnGrid grid;               ///< samples at which the columns begin
    std::int32_t cachedStart = 0;  ///< first sample (from 1) in the cache
    std::int32_t cachedLength = 0;
    float upperLimit = 0.0F;  ///< of the channel's values, in units
    float lowerLimit = 0.0F;
    float halfRange = 0.0F;
    float linearFactor = 0.0F;
    float logMultiplier = 0.0F;
    float logOffset = 0.0F;
};

/// The spectrogram of one channel: a short-time spectrum per pixel column as palette indices.
///
/// Column c is the spectrum of the 2^order samples around the first sample of column (first column + c) of a grid. With
/// m the magnitude of a bin, N the transform's length and h half the channel's range, the logarithmic index is 255 (1 +
/// (20 log10(m / (h N/2)) - top level) / decibel range), the linear one 255 x 1.2 m / (h N/2) x amplitude scale; the
/// window's coefficients add up to N, so a sine of amplitude h has m = h N/2 whatever the window. At the ends of the
/// block the samples are those of the nearest window inside it, or the columns are blank, as the settings say.
///
/// Owns the image, its colours and what it is computed with; refers to the block that it was given.
class QL_FFT {
  public:
    static constexpr std::int32_t kLeastOrder = 5;
    static constexpr std::int32_t kMostOrder = 11;
    // Limits of the levels, in decibels.
    static constexpr float kLeastRange = 10.0F;
    static constexpr float kMostRange = 200.0F;
    static constexpr float kLeastTop = -180.0F;
    static constexpr float kMostTop = 40.0F;

    explicit QL_FFT(SpectrumSettings& settings) : m_settings(settings) {}

    /// Brings settings out of range back to their defaults, see SpectrumSettings.
    static void RepairSettings(SpectrumSettings& settings);
    /// Once per run: repairs the settings, builds palette, window and an image for that many columns.
    void FFT_Init(std::int32_t imageWidth);
    /// Reserves that many columns; if there were fewer, the image is recomputed. Rounded up to a multiple of 4.
    void FFT_SetImageWidth(std::int32_t columns);
    /// An order below 5 becomes 8, one above 11 becomes 11. Everything is recomputed at the next update.
    void FFT_SetOrder(std::int32_t order);
    void FFT_BuildWindow();
    void FFT_BuildPalette() { m_palette = BuildPalette(m_settings.palette); }
    void FFT_NextPalette();
    /// Nothing is drawn until a channel is set.
    void FFT_ClearState();
    /// Takes the channel at a position (from 0) as the source; without a block or such a channel there is none.
    void FFT_SetChannel(RecordingBlock* block, std::int16_t blockNumber, std::int16_t channelIndex,
                        const ValueRange& limits);
    /// The factors from a bin's magnitude to a palette index, from the settings and the channel's limits.
    void FFT_ComputeScaling();
    /// Brings the image up to date for a view: what it already holds is moved, the other columns are computed; all of
    /// them when `force` is set, as it has to be after a change of the grid. Columns that could not be read
    /// are blank and tried again each time. Returns how many were computed.
    std::int32_t FFT_Update(std::int32_t firstColumn, std::int32_t visibleColumns, const ColumnGrid& grid, bool force);
    /// How long FFT_Update goes on computing; the columns that it has not come to are blank and left to
    /// FFT_ComputePending. At first there is no limit.
    void SetPatience(std::chrono::milliseconds patience) { m_patience = patience; }
    /// Computes some of the columns that were left; false when none is left.
    bool FFT_ComputePending();
    [[nodiscard]] bool IsIncomplete() const { return m_pendingCount > 0; }
    /// Whether a column of the image was left to FFT_ComputePending.
    [[nodiscard]] bool IsPending(std::int32_t column) const { return m_pending[static_cast<std::size_t>(column)]; }
    /// Share of the columns that are computed, from 0 to 1.
    [[nodiscard]] double ComputedShare() const;
    /// Makes the cache hold exactly these samples (from 1), reading only what it does not hold yet.
    void FFT_ReadSamples(std::int32_t start, std::int32_t count);

    /// Why some of the visible columns could not be read, as the block said it; empty when all could.
    [[nodiscard]] const std::string& ReadFailure() const { return m_failure; }
    /// Whether the last update could read a column that it could not read before.
    [[nodiscard]] bool HasRecovered() const { return m_recovered; }
    /// Whether a column of the image shows what was read; blank for another reason counts as that.
    [[nodiscard]] bool IsRead(std::int32_t column) const {
        return !m_unread[static_cast<std::size_t>(column)] && !IsPending(column);
    }

    [[nodiscard]] const SpectrumState& State() const { return m_state; }
    /// Row after row from 0 Hz up, ImageWidth() bytes each.
    [[nodiscard]] std::span<const std::uint8_t> Image() const { return m_image; }
    [[nodiscard]] std::int32_t ImageWidth() const { return m_imageWidth; }
    [[nodiscard]] std::int32_t BinCount() const { return m_length / 2 + 1; }
    [[nodiscard]] std::int32_t Length() const { return m_length; }
    [[nodiscard]] const Palette& Colors() const { return m_palette; }
    /// What an index stands for: dB below a full-scale sine, or percent of the linear plot's top.
    [[nodiscard]] double LevelOf(std::uint8_t index) const;

  private:
    /// Samples of one column's frame, from 1; a length of 0 leaves the column blank.
    struct Frame {
        std::int32_t start;
        std::int32_t length;
    };
    [[nodiscard]] Frame FrameOf(std::int32_t column) const;
    void FFT_AllocImage();
    void FFT_ComputeColumns(std::int32_t from, std::int32_t to);
    /// The same as long as the patience lasts.
    void FFT_ComputeSome(std::int32_t from, std::int32_t to);
    void SetPending(std::int32_t from, std::int32_t to, bool pending);
    void FFT_ShiftImage(std::int32_t source, std::int32_t destination, std::int32_t count);
    void Blank(std::int32_t column);

    SpectrumSettings& m_settings;
    bool m_initialised = false;
    RecordingBlock* m_block = nullptr;
    SpectrumState m_state;
    std::int32_t m_length = 0;  ///< N
    std::int32_t m_imageWidth = 0;
    std::vector<float> m_cache;
    std::vector<float> m_window;
    std::vector<float> m_frames;  ///< windowless frames of the columns computed together
    std::vector<std::uint8_t> m_image;
    std::vector<bool> m_unread;   ///< columns of the image that could not be read
    std::vector<bool> m_pending;  ///< columns of the image that are still to be computed
    std::int32_t m_pendingCount = 0;
    std::chrono::milliseconds m_patience = std::chrono::milliseconds::max();
    std::string m_failure;
    bool m_recovered = false;
    std::unique_ptr<nsp::SpectrumBatch> m_batch;  ///< for the present order, window and scaling; made on need
    Palette m_palette{};
};

}  // namespace quillon
