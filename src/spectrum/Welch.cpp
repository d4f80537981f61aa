#include "spectrum/Welch.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <utility>

#include "base/Resume.h"
#include "nsp/SplitFrames.h"
#include "spectrum/AnalysisWindow.h"

namespace quillon {

namespace {

/// New samples of a channel per step: enough that reading on costs little beside the transforms, few enough that a
/// step is short.
constexpr std::int32_t kStepSamples = 65536;

std::int32_t SegmentsIn(std::int32_t samples, std::int32_t length) {
    return samples < length ? 0 : (samples - length / 2) / (length / 2);
}

int OrderOf(std::int32_t length) {
    return std::countr_zero(static_cast<std::uint32_t>(length));
}

}  // namespace

std::optional<std::int32_t> FittingLength(std::int32_t wanted, std::int32_t samples) {
    if (samples < WelchSettings::kLeastLength) return std::nullopt;
    const std::int32_t most = std::min({wanted, samples, WelchSettings::kMostLength});
    const auto fitting = static_cast<std::int32_t>(std::bit_floor(static_cast<std::uint32_t>(std::max(most, 1))));
    return std::max(fitting, WelchSettings::kLeastLength);
}

std::int32_t UsualLength(std::int32_t samples) {
    constexpr std::int32_t usual = 4096;
    constexpr std::int32_t parts = 8;
    return FittingLength(std::min(usual, samples / parts), samples).value_or(WelchSettings::kLeastLength);
}

double DecibelsOf(double power) {
    return 10.0 * std::log10(power);
}

WelchPass::WelchPass(std::shared_ptr<RecordingBlock> block, const std::vector<std::int16_t>& channels,
                     const SampleSpan& samples, const WelchSettings& settings)
    : m_block(std::move(block)),
      m_samples(samples),
      m_settings(settings),
      m_frames(m_block->FramesAreCheap()),
      m_segments(channels.empty() ? 0 : SegmentsIn(samples.count, settings.length)),
      m_transform(OrderOf(settings.length)) {
    const std::vector<float> window = AnalysisWindow(settings.window, settings.length);
    m_window.assign(window.begin(), window.end());
    for (const std::int16_t channel : channels) m_sums.push_back({.channel = channel});
}

std::int32_t WelchPass::Together() const {
    const std::int32_t most = std::max(kStepSamples / (m_settings.length / 2), 2);
    return std::min(most, m_segments - m_next);
}

SampleSpan WelchPass::PieceOf(std::int32_t segments) const {
    const std::int32_t hop = m_settings.length / 2;
    return {m_samples.first + m_next * hop, (segments + 1) * hop};
}

bool WelchPass::ReadFrames(const SampleSpan& piece) {
    const auto channels = static_cast<std::size_t>(m_block->ChannelCount());
    const auto count = static_cast<std::size_t>(piece.count);
    m_interleaved.resize(channels * count);
    m_codes.resize(channels * count);
    bool read = false;
    Resume([&] { read = m_block->ReadFrames(piece.first, piece.count, m_interleaved.data()) == 0; });
    if (!read) return false;
    nsp::SplitFrames(reinterpret_cast<const std::uint8_t*>(m_interleaved.data()), channels * sizeof(std::int16_t),
                     channels, count, m_codes.data(), count);
    return true;
}

bool WelchPass::ReadCodes(Sums& sums, const SampleSpan& piece) {
    m_codes.resize(static_cast<std::size_t>(piece.count));
    bool read = false;
    Resume([&] { read = m_block->ReadCodes(sums.channel, piece.first, piece.count, m_codes.data()) == 0; });
    return read;
}

void WelchPass::LoadFrame(const std::int16_t* codes, std::size_t frame) {
    double* const to = m_transform.Frames().data() + frame;
    const std::int64_t sum = std::accumulate(codes, codes + m_window.size(), std::int64_t{0});
    const double mean = static_cast<double>(sum) / static_cast<double>(m_window.size());
    for (std::size_t i = 0; i < m_window.size(); ++i) to[2 * i] = (codes[i] - mean) * m_window[i];
}

void WelchPass::Add(Sums& sums, const std::int16_t* codes, std::int32_t segments) {
    const auto hop = m_window.size() / 2;
    sums.power.resize(hop + 1);
    for (std::int32_t segment = 0; segment < segments; ++segment) {
        const auto lane = static_cast<std::size_t>(segment % 2);
        LoadFrame(codes + static_cast<std::size_t>(segment) * hop, lane);
        const bool last = segment + 1 == segments;
        if (lane == 0 && !last) continue;
        const std::span<double> frames = m_transform.Frames();
        for (std::size_t i = 0; lane == 0 && i < m_window.size(); ++i) frames[2 * i + 1] = 0.0;
        m_transform.Add(sums.power);
    }
    sums.segments += segments;
}

bool WelchPass::Step() {
    if (IsDone()) return false;
    const std::int32_t segments = Together();
    const SampleSpan piece = PieceOf(segments);
    if (m_frames && !m_framesRead) {
        m_framesFailed = !ReadFrames(piece);
        m_framesRead = true;
        return true;
    }
    Sums& sums = m_sums[m_channel];
    if (sums.readable) sums.readable = m_frames ? !m_framesFailed : ReadCodes(sums, piece);
    const std::size_t row = m_frames ? static_cast<std::size_t>(sums.channel - 1) : 0;
    if (sums.readable) Add(sums, m_codes.data() + row * static_cast<std::size_t>(piece.count), segments);
    if (++m_channel < m_sums.size()) return true;
    m_channel = 0;
    m_framesRead = false;
    m_next += segments;
    return !IsDone();
}

double WelchPass::Share() const {
    if (m_segments < 1) return 1.0;
    const double within = static_cast<double>(m_channel) / static_cast<double>(m_sums.size());
    return (m_next + within * (IsDone() ? 0 : Together())) / m_segments;
}

std::vector<PowerDensity> WelchPass::Result() const {
    const double rate = m_block->SampleRate();
    const double squares = std::inner_product(m_window.begin(), m_window.end(), m_window.begin(), 0.0);
    std::vector<PowerDensity> result;
    for (const Sums& sums : m_sums) {
        PowerDensity density{.channel = sums.channel, .binWidth = rate / m_settings.length};
        if (sums.readable && sums.segments > 0) {
            const double unit = static_cast<double>(m_block->ChannelScale(sums.channel));
            const double factor = unit * unit / (rate * squares * sums.segments);
            density.segments = sums.segments;
            density.power = sums.power;
            for (double& power : density.power) power *= 2.0 * factor;
            // These two have no negative frequency beside them.
            density.power.front() /= 2.0;
            density.power.back() /= 2.0;
        }
        result.push_back(std::move(density));
    }
    return result;
}

}  // namespace quillon
