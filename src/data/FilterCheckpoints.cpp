#include "data/FilterCheckpoints.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quillon {

namespace {

constexpr std::int32_t kFirstSpacing = 4096;
constexpr std::size_t kMostBytes = std::size_t{24} << 20U;

/// Two filters, each with its sections and with two numbers per section and channel, of which there are a vector's
/// lanes at least.
std::size_t BytesOf(const nsp::FilterDesign& design, std::size_t channels) {
    constexpr std::size_t lanes = 4;
    constexpr std::size_t others = 512;
    const std::size_t section = sizeof(nsp::FilterSection) + 2 * sizeof(double) * (channels + lanes);
    return 2 * design.Sections().size() * section + others;
}

}  // namespace

FilterCheckpoints::FilterCheckpoints(const nsp::FilterDesign& design, std::size_t channels)
    : m_most(std::max<std::size_t>(kMostBytes / BytesOf(design, channels), 2)), m_spacing(kFirstSpacing) {}

const nsp::CellFilter* FilterCheckpoints::Before(std::int32_t sample) const {
    for (auto found = m_kept.upper_bound(sample / m_spacing); found != m_kept.begin();) {
        --found;
        if (found->second.Position() <= sample) return &found->second;
    }
    return nullptr;
}

void FilterCheckpoints::Pass(const nsp::CellFilter* state) {
    if (state == nullptr || m_kept.contains(state->Position() / m_spacing)) return;
    m_kept.emplace(state->Position() / m_spacing, *state);
    if (m_kept.size() <= m_most) return;
    m_spacing *= 2;
    for (auto& [number, kept] : std::exchange(m_kept, {})) m_kept.try_emplace(number / 2, std::move(kept));
}

}  // namespace quillon
