#include "data/Stretch.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>
#include <utility>

#include "base/DateTime.h"
#include "base/Resume.h"

namespace quillon {

namespace {

/// Dates are no more exact than that.
constexpr double kDateStep = 2e-6;

/// What decides whether blocks cover the same stretch.
struct Extent {
    std::shared_ptr<RecordingBlock> block{};
    double start = 0.0;
    double rate = 0.0;
    std::int32_t samples = 0;
    int channels = 0;
};

/// Of the block at a position; without a block where that cannot be told.
Extent ExtentAt(Recording& recording, int index) {
    Extent extent;
    Resume([&] {
        std::shared_ptr<RecordingBlock> block = recording.GetBlock(static_cast<std::int16_t>(index + 1));
        extent.start = block->StartTime();
        extent.rate = block->SampleRate();
        extent.samples = block->SampleCount();
        extent.channels = block->ChannelCount();
        extent.block = std::move(block);
    });
    return extent;
}

bool CoverTheSame(const Extent& one, const Extent& other) {
    if (!(one.rate > 0.0) || !(other.rate > 0.0) || one.samples < 1 || other.samples < 1) return false;
    const double apart = std::fabs(one.start - other.start) * kSecondsPerDay;
    // Durations, multiplied by both rates.
    const double longer = std::fabs(one.samples * other.rate - other.samples * one.rate);
    const double faster = std::max(one.rate, other.rate);
    return apart <= std::max(0.5 / faster, kDateStep) && longer < faster;
}

bool HasSlot(std::int16_t channelNumber) {
    return channelNumber >= 0 && channelNumber < kSlotCount;
}

/// The blocks that cover the same stretch as a loaded one.
struct Neighbours {
    std::vector<Extent> extents;  ///< in the order of the recording
    std::size_t place = 0;        ///< of the loaded one among them
    std::size_t from = 0;         ///< those from here to `to` are not too many
    std::size_t to = 0;
    int signals = 0;  ///< of these
};

Neighbours NeighboursOf(Recording& recording, int index, const ViewBlock& loaded) {
    const Extent own{loaded.block, loaded.startTime, loaded.sampleRate, loaded.sampleCount, loaded.channelCount};
    Neighbours found{.extents = {own}, .signals = own.channels};
    std::vector<Extent>& extents = found.extents;
    int first = index;
    for (; first > 0; --first) {
        Extent extent = ExtentAt(recording, first - 1);
        if (!extent.block || !CoverTheSame(own, extent)) break;
        extents.insert(extents.begin(), std::move(extent));
    }
    for (int next = index + 1; next < recording.BlockCount(); ++next) {
        Extent extent = ExtentAt(recording, next);
        if (!extent.block || !CoverTheSame(own, extent)) break;
        extents.push_back(std::move(extent));
    }
    found.place = found.from = static_cast<std::size_t>(index - first);
    found.to = found.place + 1;
    const auto fits = [&](std::size_t at) { return found.signals + extents[at].channels <= Stretch::kMostSignals; };
    while (found.from > 0 && fits(found.from - 1)) found.signals += extents[--found.from].channels;
    while (found.to < extents.size() && fits(found.to)) found.signals += extents[found.to++].channels;
    return found;
}

}  // namespace

void Stretch::Clear() {
    m_others.clear();
    m_order.clear();
    m_count = 0;
    m_place = 0;
}

bool Stretch::CoverTheSame(const ViewBlock& one, const ViewBlock& other) {
    const auto extentOf = [](const ViewBlock& block) {
        return Extent{block.block, block.startTime, block.sampleRate, block.sampleCount, block.channelCount};
    };
    return quillon::CoverTheSame(extentOf(one), extentOf(other));
}

int Stretch::CountSignals(Recording& recording, std::int16_t index, const ViewBlock& loaded) {
    return NeighboursOf(recording, index, loaded).signals;
}

bool Stretch::Find(Recording& recording, std::int16_t index, const ViewBlock& loaded, const UserServices& texts) {
    const Neighbours found = NeighboursOf(recording, index, loaded);
    const std::size_t place = found.place;
    std::vector<OtherBlock> others;
    for (std::size_t at = found.from; at < found.to; ++at) {
        if (at == place) continue;
        OtherBlock other;
        other.index = static_cast<std::int16_t>(index + static_cast<int>(at) - static_cast<int>(place));
        other.place = at;
        other.block.block = other.block.stored = found.extents[at].block;
        others.push_back(std::move(other));
    }
    const std::size_t before = m_others.size() - (HasMontage() ? 1 : 0);
    const bool isSame =
        place == m_place && others.size() == before &&
        std::equal(others.begin(), others.end(), m_others.begin(), [](const OtherBlock& one, const OtherBlock& other) {
            return one.block.stored == other.block.stored;
        });
    if (isSame) return false;
    m_others.clear();
    m_count = 0;
    m_place = place;
    for (OtherBlock& other : others) Add(std::move(other), loaded, texts);
    FindOrder(loaded);
    return true;
}

void Stretch::Add(OtherBlock other, const ViewBlock& loaded, const UserServices& texts) {
    LoadDescription(other.block);
    const std::size_t channels = other.block.channelNumbers.size();
    other.before = static_cast<std::int16_t>(loaded.channelNumbers.size() + static_cast<std::size_t>(m_count));
    m_count = static_cast<std::int16_t>(static_cast<std::size_t>(m_count) + channels);
    for (std::size_t channel = 1; channel <= channels; ++channel)
        other.texts.push_back(LoadTexts(other.block, static_cast<std::int16_t>(channel), texts));
    m_others.push_back(std::move(other));
}

bool Stretch::SetMontage(const ViewBlock& loaded, std::shared_ptr<RecordingBlock> pairs, const UserServices& texts) {
    const bool had = HasMontage();
    if (had ? pairs == m_others.back().block.block : pairs == nullptr) return false;
    if (had) {
        m_count = static_cast<std::int16_t>(m_count - m_others.back().block.channelCount);
        m_others.pop_back();
    }
    if (pairs != nullptr) {
        OtherBlock montage;
        montage.index = -1;
        montage.place = kMontagePlace;
        montage.block.block = montage.block.stored = std::move(pairs);
        Add(std::move(montage), loaded, texts);
    }
    FindOrder(loaded);
    return true;
}

void Stretch::FindOrder(const ViewBlock& loaded) {
    struct Entry {
        std::int16_t number;
        std::int16_t input = 0;
    };
    std::vector<Entry> entries;
    std::set<std::int16_t> inputs;
    const auto add = [&](const ViewBlock& block, std::int16_t before) {
        for (std::size_t channel = 1; channel <= block.channelNumbers.size(); ++channel) {
            Entry entry{static_cast<std::int16_t>(before + static_cast<std::int16_t>(channel))};
            Resume([&] { entry.input = block.block->InputNumber(static_cast<std::int16_t>(channel)); });
            inputs.insert(entry.input);
            entries.push_back(entry);
        }
    };
    bool added = false;
    for (const OtherBlock& other : m_others) {
        if (other.IsMontage()) continue;
        if (!added && other.place > m_place) added = (add(loaded, 0), true);
        add(other.block, other.before);
    }
    if (!added) add(loaded, 0);
    if (inputs.size() == entries.size())
        std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.input < b.input; });
    m_order.clear();
    if (HasMontage()) {
        m_order.resize(m_others.back().texts.size());
        std::iota(m_order.begin(), m_order.end(), static_cast<std::int16_t>(m_others.back().before + 1));
    }
    for (const Entry& entry : entries) m_order.push_back(entry.number);
}

const OtherBlock* Stretch::Of(std::int16_t number) const {
    const auto behind =
        std::upper_bound(m_others.begin(), m_others.end(), number,
                         [](std::int16_t wanted, const OtherBlock& other) { return wanted <= other.before; });
    if (behind == m_others.begin()) return nullptr;
    const OtherBlock& found = *(behind - 1);
    return static_cast<std::size_t>(number - found.before) <= found.texts.size() ? &found : nullptr;
}

OtherBlock* Stretch::Provisional() {
    const auto found = std::find_if(m_others.begin(), m_others.end(),
                                    [](const OtherBlock& other) { return other.block.block->IsProvisional(); });
    return found == m_others.end() ? nullptr : &*found;
}

ChannelFlags Stretch::ShownAt(std::size_t place) const {
    return place < m_shown.size() ? m_shown[place] : ChannelFlags().set();
}

void Stretch::SetShownAt(std::size_t place, const ChannelFlags& shown) {
    if (place >= m_shown.size()) m_shown.resize(place + 1, ChannelFlags().set());
    m_shown[place] = shown;
}

bool Stretch::IsShown(std::int16_t number) const {
    const OtherBlock* const other = Of(number);
    if (other == nullptr) return false;
    const std::int16_t slot = other->block.channelNumbers[static_cast<std::size_t>(number - other->before - 1)];
    return HasSlot(slot) && ShownAt(other->place).test(static_cast<std::size_t>(slot));
}

void Stretch::Show(std::int16_t number, bool shown) {
    const OtherBlock* const other = Of(number);
    if (other == nullptr) return;
    const std::int16_t slot = other->block.channelNumbers[static_cast<std::size_t>(number - other->before - 1)];
    if (!HasSlot(slot)) return;
    ChannelFlags flags = ShownAt(other->place);
    SetShownAt(other->place, flags.set(static_cast<std::size_t>(slot), shown));
}

}  // namespace quillon
