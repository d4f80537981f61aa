#include "spectrum/QL_FFT.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <utility>

#include "nsp/Spectrum.h"
#include "spectrum/AnalysisWindow.h"

namespace quillon {

namespace {

/// Columns that are computed together.
constexpr std::int32_t kTogether = 16;

/// Requested order of a transform.
std::int32_t OrderFor(std::int32_t asked) {
    constexpr std::int32_t fallback = 8;
    return asked < QL_FFT::kLeastOrder ? fallback : std::min(asked, QL_FFT::kMostOrder);
}

}  // namespace

void QL_FFT::RepairSettings(SpectrumSettings& settings) {
    settings.order = OrderFor(settings.order);
    if (!(settings.amplitudeScale > 0.0F) || !std::isfinite(settings.amplitudeScale)) settings.amplitudeScale = 100.0F;
    if (!(settings.decibelRange >= kLeastRange && settings.decibelRange <= kMostRange)) settings.decibelRange = 120.0F;
    if (!(settings.topLevel >= kLeastTop && settings.topLevel <= kMostTop)) settings.topLevel = 0.0F;
    if (!(settings.highestFrequency > 0.0F) || !std::isfinite(settings.highestFrequency))
        settings.highestFrequency = 0.0F;
}

void QL_FFT::FFT_Init(std::int32_t imageWidth) {
    if (m_initialised) return;
    RepairSettings(m_settings);
    FFT_BuildPalette();
    m_imageWidth = (std::max(imageWidth, 1) + 3) / 4 * 4;
    FFT_SetOrder(m_settings.order);
    m_initialised = true;
}

void QL_FFT::FFT_SetImageWidth(std::int32_t columns) {
    const std::int32_t width = (std::max(columns, 1) + 3) / 4 * 4;
    if (width <= m_imageWidth) return;
    m_state.columnCount = 0;
    const std::int32_t before = std::exchange(m_imageWidth, width);
    try {
        FFT_AllocImage();
    } catch (...) {
        m_imageWidth = before;
        throw;
    }
}

void QL_FFT::FFT_SetOrder(std::int32_t order) {
    m_settings.order = OrderFor(order);
    m_length = 1 << m_settings.order;
    const auto length = static_cast<std::size_t>(m_length);
    m_cache.assign(length, 0.0F);
    m_frames.assign(length * kTogether, 0.0F);
    FFT_BuildWindow();
    FFT_AllocImage();
    m_state.columnCount = 0;
    m_state.cachedLength = 0;
}

void QL_FFT::FFT_BuildWindow() {
    m_window = AnalysisWindow(m_settings.window, m_length);
    float* const window = m_window.data();
    // So that a sine has the same peak with every window.
    const double sum = static_cast<double>(nsp::nspsSum(window, m_length));
    if (std::nearbyint(sum) != m_length) nsp::nspsbMpy1(static_cast<float>(m_length / sum), window, m_length);
    m_batch.reset();
}

void QL_FFT::FFT_AllocImage() {
    m_image.assign(static_cast<std::size_t>(m_imageWidth) * static_cast<std::size_t>(BinCount()), 0);
    m_unread.assign(static_cast<std::size_t>(m_imageWidth), false);
    m_pending.assign(static_cast<std::size_t>(m_imageWidth), false);
    m_pendingCount = 0;
}

void QL_FFT::FFT_NextPalette() {
    m_settings.palette = NextPalette(m_settings.palette);
    FFT_BuildPalette();
}

void QL_FFT::FFT_ClearState() {
    m_state = {};
    m_block = nullptr;
    std::fill(m_image.begin(), m_image.end(), std::uint8_t{0});
    std::fill(m_unread.begin(), m_unread.end(), false);
    SetPending(0, m_imageWidth, false);
    m_failure.clear();
    m_recovered = false;
}

void QL_FFT::FFT_SetChannel(RecordingBlock* block, std::int16_t blockNumber, std::int16_t channelIndex,
                            const ValueRange& limits) {
    FFT_ClearState();
    if (block == nullptr || channelIndex < 0 || channelIndex >= block->ChannelCount()) return;
    m_block = block;
    m_state.blockNumber = blockNumber;
    m_state.channelIndex = channelIndex;
    m_state.sampleCount = block->SampleCount();
    m_state.deviceChannel = block->ChannelNumber(static_cast<std::int16_t>(channelIndex + 1));
    m_state.lowerLimit = limits.minimum;
    m_state.upperLimit = limits.maximum;
    FFT_ComputeScaling();
    m_state.ready = true;
}

void QL_FFT::FFT_ComputeScaling() {
    m_batch.reset();
    const float half = (m_state.upperLimit - m_state.lowerLimit) / 2.0F;
    m_state.halfRange = half;
    m_state.linearFactor = m_state.logMultiplier = m_state.logOffset = 0.0F;
    if (!(half > 0.0F) || !std::isfinite(half)) {
        m_state.halfRange = 0.0F;
        return;
    }
    // Whole, as the length is a power of 2.
    const float halfLength = static_cast<float>(m_length) / 2.0F;
    // A little more than the range would need: what reaches five sixths of it has the top colour.
    constexpr double headroom = 1.2;
    double factor = headroom * 255.0 / (static_cast<double>(half) * static_cast<double>(halfLength));
    if (m_settings.amplitudeScale > 0.0F) factor *= static_cast<double>(m_settings.amplitudeScale) / 100.0;
    m_state.linearFactor = static_cast<float>(factor);
    const float decades = m_settings.decibelRange / 20.0F;
    float logarithms[2] = {half, halfLength};
    nsp::nspsbLg1(logarithms, 2);
    m_state.logMultiplier = 255.0F / decades;
    m_state.logOffset = decades - logarithms[0] - logarithms[1] - m_settings.topLevel / 20.0F;
}

QL_FFT::Frame QL_FFT::FrameOf(std::int32_t column) const {
    const std::int64_t half = m_length / 2;
    const std::int64_t samples = m_state.sampleCount;
    std::int64_t start = m_state.grid.FirstSample(std::int64_t{m_state.firstColumn} + column) + 1 - half;
    std::int64_t length = m_length;
    if (!(m_state.halfRange > 0.0F) || start + half > samples) return {1, 0};
    if (m_settings.blankEnds && (start < 1 || start + length - 1 > samples)) return {1, 0};
    // At both ends of the block the frame is shifted into it, not padded.
    start = std::max<std::int64_t>(start, 1);
    if (start + length - 1 > samples) {
        start = samples - length + 1;
        if (start < 1) {
            start = 1;
            length = samples;
        }
    }
    if (static_cast<double>(length) < m_length / 8.0) length = 0;
    return {static_cast<std::int32_t>(start), static_cast<std::int32_t>(length)};
}

void QL_FFT::Blank(std::int32_t column) {
    for (std::int32_t bin = 0; bin < BinCount(); ++bin)
        m_image[static_cast<std::size_t>(bin) * static_cast<std::size_t>(m_imageWidth) +
                static_cast<std::size_t>(column)] = 0;
}

void QL_FFT::FFT_ComputeColumns(std::int32_t from, std::int32_t to) {
    if (!m_batch) {
        m_batch =
            std::make_unique<nsp::SpectrumBatch>(m_settings.order, m_window.data(),
                                                 nsp::SpectrumBatch::Scale{m_settings.type == 1, m_state.linearFactor,
                                                                           m_state.logMultiplier, m_state.logOffset});
    }
    const auto length = static_cast<std::size_t>(m_length);
    std::vector<const float*> frames;
    std::int32_t first = from;
    const auto flush = [&](std::int32_t next) {
        if (!frames.empty()) m_batch->Compute(frames, m_image.data() + first, m_imageWidth);
        frames.clear();
        first = next;
    };
    for (std::int32_t column = from; column <= to; ++column) {
        const Frame frame = FrameOf(column);
        bool readable = frame.length > 0;
        m_unread[static_cast<std::size_t>(column)] = false;
        try {
            if (readable) FFT_ReadSamples(frame.start, frame.length);
        } catch (const std::exception& error) {
            // The frame cannot be read; the failed call may have overwritten part of the cache.
            m_state.cachedLength = 0;
            readable = false;
            m_unread[static_cast<std::size_t>(column)] = true;
            m_failure = error.what();
        }
        if (!readable) {
            flush(column + 1);
            Blank(column);
            continue;
        }
        float* place = m_frames.data() + frames.size() * length;
        std::copy_n(m_cache.begin(), frame.length, place);
        std::fill(place + frame.length, place + length, 0.0F);
        frames.push_back(place);
        if (static_cast<std::int32_t>(frames.size()) == kTogether) flush(column + 1);
    }
    flush(to + 1);
}

void QL_FFT::FFT_ReadSamples(std::int32_t start, std::int32_t count) {
    const auto channel = static_cast<std::int16_t>(m_state.channelIndex + 1);
    float* cache = m_cache.data();
    const auto read = [&](std::int32_t sample, std::int32_t samples, std::int32_t place) {
        if (samples >= 1) m_block->ReadValues(channel, sample - 1, samples, cache + place);
    };
    const std::int64_t distance = std::int64_t{start} - m_state.cachedStart;
    const std::int32_t held = m_state.cachedLength;
    if (held < count) {
        if (distance == 0) {
            read(start + held, count - held, held);
        } else {
            read(start, count, 0);
        }
    } else if (distance > count || distance < -count) {
        read(start, count, 0);
    } else if (distance > 0) {
        const auto moved = static_cast<std::int32_t>(distance);
        std::copy(cache + moved, cache + count, cache);
        read(start + count - moved, moved, count - moved);
    } else if (distance < 0) {
        const auto moved = static_cast<std::int32_t>(-distance);
        std::copy_backward(cache, cache + (count - moved), cache + count);
        read(start, moved, 0);
    }
    m_state.cachedStart = start;
    m_state.cachedLength = count;
}

void QL_FFT::FFT_ShiftImage(std::int32_t source, std::int32_t destination, std::int32_t count) {
    if (count < 1) return;
    for (std::int32_t bin = 0; bin < BinCount(); ++bin) {
        std::uint8_t* row = m_image.data() + static_cast<std::size_t>(bin) * static_cast<std::size_t>(m_imageWidth);
        std::memmove(row + destination, row + source, static_cast<std::size_t>(count));
    }
    for (std::vector<bool>* const columns : {&m_unread, &m_pending}) {
        const auto flags = columns->begin();
        if (destination < source) {
            std::copy(flags + source, flags + source + count, flags + destination);
        } else {
            std::copy_backward(flags + source, flags + source + count, flags + destination + count);
        }
    }
    m_pendingCount = static_cast<std::int32_t>(std::count(m_pending.begin(), m_pending.end(), true));
}

void QL_FFT::SetPending(std::int32_t from, std::int32_t to, bool pending) {
    std::fill(m_pending.begin() + from, m_pending.begin() + to, pending);
    m_pendingCount = static_cast<std::int32_t>(std::count(m_pending.begin(), m_pending.end(), true));
}

double QL_FFT::ComputedShare() const {
    return m_state.columnCount < 1 ? 0.0 : 1.0 - static_cast<double>(m_pendingCount) / m_state.columnCount;
}

void QL_FFT::FFT_ComputeSome(std::int32_t from, std::int32_t to) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    SetPending(from, to + 1, false);
    while (from <= to) {
        const std::int32_t end = std::min(from + kTogether - 1, to);
        FFT_ComputeColumns(from, end);
        from = end + 1;
        if (m_patience != std::chrono::milliseconds::max() && Clock::now() - start >= m_patience) break;
    }
    for (std::int32_t column = from; column <= to; ++column) Blank(column);
    SetPending(from, to + 1, true);
}

bool QL_FFT::FFT_ComputePending() {
    if (m_pendingCount == 0) return false;
    const auto first = std::find(m_pending.begin(), m_pending.end(), true);
    const auto end = std::find(first, m_pending.end(), false);
    const auto from = static_cast<std::int32_t>(first - m_pending.begin());
    const auto to = std::min(from + kTogether, static_cast<std::int32_t>(end - m_pending.begin())) - 1;
    FFT_ComputeColumns(from, to);
    SetPending(from, to + 1, false);
    return m_pendingCount > 0;
}

std::int32_t QL_FFT::FFT_Update(std::int32_t firstColumn, std::int32_t visibleColumns, const ColumnGrid& grid,
                                bool force) {
    if (!m_state.ready) return 0;
    FFT_SetImageWidth(visibleColumns);
    const std::int32_t held = m_state.columnCount;
    const std::int64_t shift = std::int64_t{firstColumn} - m_state.firstColumn;
    std::int32_t from = 0;
    std::int32_t to = visibleColumns - 1;
    if (force || held == 0) {
        FFT_ComputeScaling();
    } else if (shift == 0) {
        from = held;
        if (held >= visibleColumns) to = held - 1;
    } else if (shift > held || shift < -held || visibleColumns != held) {
        // No held column is in the view, or the held ones do not fill it: compute all columns.
    } else if (shift > 0) {
        const auto moved = static_cast<std::int32_t>(shift);
        FFT_ShiftImage(moved, 0, held - moved);
        from = held - moved;
    } else {
        const auto moved = static_cast<std::int32_t>(-shift);
        FFT_ShiftImage(0, moved, held - moved);
        to = moved - 1;
    }
    m_state.grid = grid;
    m_state.firstColumn = firstColumn;
    // No column is valid until the missing ones are computed.
    m_state.columnCount = 0;
    m_failure.clear();
    m_recovered = false;
    std::int32_t computed = std::max(to - from + 1, 0);
    if (computed > 0) FFT_ComputeSome(from, to);
    // What was left to be computed outside the view is no longer wanted.
    SetPending(visibleColumns, m_imageWidth, false);
    for (std::int32_t column = 0; column < visibleColumns; ++column) {
        if (IsRead(column) || IsPending(column) || (column >= from && column <= to)) continue;
        FFT_ComputeColumns(column, column);
        if (!IsRead(column)) continue;
        ++computed;
        m_recovered = true;
    }
    m_state.columnCount = visibleColumns;
    return computed;
}

double QL_FFT::LevelOf(std::uint8_t index) const {
    if (m_settings.type == 1) return index / 255.0 * 100.0;
    return (index / 255.0 - 1.0) * static_cast<double>(m_settings.decibelRange) +
           static_cast<double>(m_settings.topLevel);
}

}  // namespace quillon
