#include "view/StretchExtremes.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "data/BlockLoading.h"

namespace quillon {

StretchExtremes::Known& StretchExtremes::Of(const ViewBlock& block) {
    const auto found = std::find_if(m_known.begin(), m_known.end(),
                                    [&](const auto& known) { return known->block.lock() == block.block; });
    if (found != m_known.end()) return **found;
    Known& added = *m_known.emplace_back(std::make_unique<Known>());
    added.block = block.block;
    added.invScale = block.invScale;
    added.offsets = block.offsets;
    return added;
}

ViewBlock StretchExtremes::StoredBlock() const {
    const ViewBlock& loaded = m_document.Block();
    ViewBlock stored;
    stored.block = stored.stored = loaded.stored;
    stored.sampleCount = loaded.sampleCount;
    stored.sampleRate = loaded.sampleRate;
    stored.channelCount = loaded.channelCount;
    stored.channelNumbers = loaded.channelNumbers;
    LoadScales(stored);
    return stored;
}

RangeRecords& StretchExtremes::StoredRanges() {
    return IsShownAsStored() ? m_ranges : Of(StoredBlock()).ranges;
}

bool StretchExtremes::ReadStored(std::span<const std::int16_t> channels, const SampleSpan& seen) {
    if (IsShownAsStored()) return m_ranges.ReadMissing(m_document.Block(), channels, seen);
    const ViewBlock stored = StoredBlock();
    return Of(stored).ranges.ReadMissing(stored, channels, seen);
}

SceneBlocks StretchExtremes::Others() {
    SceneBlocks blocks;
    const std::size_t known = m_known.size();
    for (const OtherBlock& other : m_document.OtherBlocks())
        blocks.push_back({other.block, Of(other.block).extremes, other.before});
    if (m_known.size() != known) ShareMemory();
    return blocks;
}

SceneBlocks StretchExtremes::All() {
    SceneBlocks blocks{{m_document.Block(), m_loaded}};
    for (const SceneBlock& other : Others()) blocks.push_back(other);
    return blocks;
}

void StretchExtremes::ShareMemory() {
    const auto size = [](const ViewBlock& block) {
        return static_cast<double>(block.sampleCount) * static_cast<double>(block.channelNumbers.size());
    };
    double all = size(m_document.Block());
    for (const OtherBlock& other : m_document.OtherBlocks()) all += size(other.block);
    const auto limit = [&](const ViewBlock& block) {
        const double share = all > 0.0 ? size(block) / all : 1.0;
        return static_cast<std::size_t>(share * static_cast<double>(ExtremesCache::kDefaultLimit));
    };
    m_loaded.SetLimit(limit(m_document.Block()));
    for (const OtherBlock& other : m_document.OtherBlocks()) {
        for (const auto& known : m_known) {
            if (known->block.lock() == other.block.block) known->extremes.SetLimit(limit(other.block));
        }
    }
}

void StretchExtremes::LeaveBlock() {
    m_ranges.Reset();
    if (const std::shared_ptr<RecordingBlock> block = m_loadedBlock.lock()) {
        auto left = std::make_unique<Known>();
        left->block = block;
        left->invScale = std::move(m_invScale);
        left->offsets = std::move(m_offsets);
        left->extremes = std::move(m_loaded);
        m_known.push_back(std::move(left));
    }
    m_loadedBlock.reset();
    m_loaded = ExtremesCache();
}

bool StretchExtremes::BlockLoaded() {
    const ViewBlock& loaded = m_document.Block();
    // Also where no block was loaded: what was asked for since then is of the block that was left.
    if (m_loadedBlock.lock() != loaded.block) LeaveBlock();
    const auto isLoaded = [&](const auto& known) { return loaded.block && known->block.lock() == loaded.block; };
    const auto found = std::find_if(m_known.begin(), m_known.end(), isLoaded);
    const bool stays = found != m_known.end();
    if (stays) {
        const bool isSame = (*found)->invScale == loaded.invScale && (*found)->offsets == loaded.offsets;
        m_loaded = isSame ? std::move((*found)->extremes) : ExtremesCache();
        m_ranges.Reset();
        m_known.erase(found);
    }
    std::erase_if(m_known, [&](const auto& known) {
        const std::shared_ptr<RecordingBlock> block = known->block.lock();
        if (block != nullptr && m_document.Keeps(block.get())) return false;
        const auto& others = m_document.OtherBlocks();
        return block == nullptr || std::none_of(others.begin(), others.end(),
                                                [&](const OtherBlock& other) { return other.block.block == block; });
    });
    m_loadedBlock = loaded.block;
    m_invScale = loaded.invScale;
    m_offsets = loaded.offsets;
    TakeGrown();
    ShareMemory();
    return stays;
}

void StretchExtremes::FileGrows() {
    m_grown.clear();
    m_grownFile = m_document.File().fileName;
    const auto& filters = m_document.Shown().filters;
    // What is filtered backwards too depends on samples to come.
    if (std::any_of(filters.begin(), filters.end(), [](const auto& filter) { return filter.second.bothWays; })) return;
    const auto keep = [&](const ViewBlock& block, std::int16_t index, ExtremesCache& extremes) {
        m_grown.push_back({index, block.invScale, block.offsets, std::exchange(extremes, ExtremesCache())});
    };
    keep(m_document.Block(), m_document.File().currentBlockIndex, m_loaded);
    for (const OtherBlock& other : m_document.OtherBlocks()) {
        if (!other.IsMontage()) keep(other.block, other.index, Of(other.block).extremes);
    }
}

void StretchExtremes::TakeGrown() {
    // Opening it anew may have failed.
    if (m_grownFile != m_document.File().fileName) m_grown.clear();
    const auto take = [&](const ViewBlock& block, std::int16_t index, ExtremesCache& extremes) {
        const auto found =
            std::find_if(m_grown.begin(), m_grown.end(), [&](const Grown& grown) { return grown.index == index; });
        if (found == m_grown.end() || !block.block) return;
        const bool isSame = found->invScale == block.invScale && found->offsets == block.offsets;
        if (isSame && found->extremes.Grow(*block.block)) extremes = std::move(found->extremes);
        m_grown.erase(found);
    };
    take(m_document.Block(), m_document.File().currentBlockIndex, m_loaded);
    for (const OtherBlock& other : m_document.OtherBlocks()) take(other.block, other.index, Of(other.block).extremes);
    m_grown.clear();
}

void StretchExtremes::Rescaled() {
    const ViewBlock& loaded = m_document.Block();
    if (m_document.OtherBlocks().empty() || m_invScale != loaded.invScale || m_offsets != loaded.offsets) {
        m_loaded.Reset();
        m_ranges.Reset();
        m_invScale = loaded.invScale;
        m_offsets = loaded.offsets;
    }
    for (const OtherBlock& other : m_document.OtherBlocks()) {
        Known& known = Of(other.block);
        if (known.invScale == other.block.invScale && known.offsets == other.block.offsets) continue;
        known.extremes.Reset();
        known.ranges.Reset();
        known.complete = false;
        known.invScale = other.block.invScale;
        known.offsets = other.block.offsets;
    }
}

std::int32_t StretchExtremes::Fastest() const {
    std::int32_t most = 0;
    for (const OtherBlock& other : m_document.OtherBlocks()) most = std::max(most, other.block.sampleCount);
    return most;
}

bool StretchExtremes::ReadOthers(const TimeAxis& axis) {
    for (const OtherBlock& other : m_document.OtherBlocks()) {
        Known& known = Of(other.block);
        if (known.complete) continue;
        std::vector<std::int16_t> all(other.block.channelNumbers.size());
        std::iota(all.begin(), all.end(), std::int16_t{1});
        const SampleSpan seen = StretchOf(axis, other.block.sampleCount, 0, axis.Width()).samples;
        known.complete = !known.ranges.ReadMissing(other.block, all, seen);
        return true;
    }
    return false;
}

double StretchExtremes::OthersShare() const {
    const std::vector<OtherBlock>& others = m_document.OtherBlocks();
    const auto complete = std::count_if(others.begin(), others.end(), [&](const OtherBlock& other) {
        return std::any_of(m_known.begin(), m_known.end(), [&](const auto& known) {
            return known->complete && known->block.lock() == other.block.block;
        });
    });
    return others.empty() ? 1.0 : static_cast<double>(complete) / static_cast<double>(others.size());
}

}  // namespace quillon
