#include "norvik/private/FlacFrames.h"

#include <algorithm>
#include <utility>

#include "base/Text.h"

namespace quillon {

namespace {

/// Decoded frames are kept up to this size.
constexpr std::size_t kDecodedBytes = std::size_t{4} << 20;
/// Frames nearer to a known one are reached by decoding those in between.
constexpr std::uint64_t kWalkBytes = std::uint64_t{64} * 1024;
/// Rounds after which places are no longer guessed by the number of samples but taken from the middle.
constexpr int kGuesses = 24;

std::size_t BytesOf(const FlacSamples& samples) {
    return samples.samples.size() * sizeof(std::int32_t);
}

}  // namespace

FlacFrames::FlacFrames(const std::shared_ptr<ByteSource>& source, FlacMetadata metadata)
    : m_finder(source, metadata),
      m_seekPoints(std::move(metadata.seekPoints)),
      m_start(metadata.firstFrame),
      m_end(source->Size()) {
    if (m_finder.First().end == 0) return;
    const std::uint64_t most = metadata.samples == 0 ? ~std::uint64_t{0} : metadata.samples;
    const FlacPlace last = m_finder.Last(most, m_scratch);
    Add(m_finder.First(), false);
    if (last.first != m_finder.First().first) Add(last, false);
    m_samples = last.end;
}

FlacRange FlacFrames::HoleBefore(Places::const_iterator after) const {
    FlacRange hole{0, m_samples, m_start, m_end};
    if (after != m_places.end()) {
        hole.endSample = after->first;
        hole.endByte = after->second.offset;
    }
    if (after != m_places.begin()) {
        const Place& before = std::prev(after)->second;
        hole.firstSample = before.end;
        hole.firstByte = before.next;
    }
    return hole;
}

FlacFrames::Stretch FlacFrames::Find(std::uint64_t sample) {
    for (int round = 0;; ++round) {
        const auto after = m_places.upper_bound(sample);
        if (after != m_places.begin()) {
            const auto& [first, place] = *std::prev(after);
            if (sample < place.end) return {first, place.end, place.missing ? nullptr : Decode(first, place)};
        }
        Narrow(HoleBefore(after), sample, round);
    }
}

void FlacFrames::Narrow(const FlacRange& hole, std::uint64_t sample, int round) {
    if (hole.firstByte + kWalkBytes >= hole.endByte) return AddFirst(hole);
    if (AddBySeekPoint(hole, sample)) return;
    const std::uint64_t bytes = hole.endByte - hole.firstByte;
    const double share =
        static_cast<double>(sample - hole.firstSample) / static_cast<double>(hole.endSample - hole.firstSample);
    auto ahead = static_cast<std::uint64_t>(static_cast<double>(bytes) * (round < kGuesses ? share : 0.5));
    // A little before the sample, so that its frame is one of the next; nearer to the hole's start where there is none.
    for (ahead = std::min(ahead, bytes); ahead > kWalkBytes; ahead /= 2) {
        const FlacRange probe{hole.firstSample, hole.endSample, hole.firstByte + ahead - kWalkBytes / 2,
                              std::min(hole.firstByte + ahead + kWalkBytes, hole.endByte)};
        if (const std::optional<FlacPlace> place = m_finder.Search(probe, m_scratch)) return Add(*place);
    }
    AddFirst(hole);
}

bool FlacFrames::AddBySeekPoint(const FlacRange& hole, std::uint64_t sample) {
    const auto behind =
        std::upper_bound(m_seekPoints.begin(), m_seekPoints.end(), sample,
                         [](std::uint64_t wanted, const FlacSeekPoint& point) { return wanted < point.sample; });
    if (behind == m_seekPoints.begin()) return false;
    const FlacSeekPoint& point = *std::prev(behind);
    if (point.sample < hole.firstSample || point.offset < hole.firstByte || point.offset >= hole.endByte) return false;
    const std::optional<FlacPlace> place =
        m_finder.At({point.sample, hole.endSample, point.offset, hole.endByte}, m_scratch);
    if (place && place->first == point.sample) {
        Add(*place);
        return true;
    }
    // One that is wrong is a sign that the stream was changed after the table was made.
    m_seekPoints.clear();
    return false;
}

void FlacFrames::AddFirst(const FlacRange& hole) {
    const std::optional<FlacPlace> place = m_finder.Search(hole, m_scratch);
    if (!place || place->first > hole.firstSample) AddMissing(hole, place ? place->first : hole.endSample);
    if (place) Add(*place);
}

void FlacFrames::AddMissing(const FlacRange& hole, std::uint64_t endSample) {
    m_places.emplace(hole.firstSample, Place{endSample, hole.firstByte, hole.firstByte, true});
}

void FlacFrames::Add(const FlacPlace& place, bool decoded) {
    m_places.emplace(place.first, Place{place.end, place.offset, place.next, false});
    if (!decoded) return;
    m_decoded.push_back({place.first, std::exchange(m_scratch, {})});
    m_decodedBytes += BytesOf(m_decoded.back().samples);
    m_decodedAt[place.first] = std::prev(m_decoded.end());
    while (m_decodedBytes > kDecodedBytes && m_decoded.size() > 1) {
        m_decodedAt.erase(m_decoded.front().first);
        m_decodedBytes -= BytesOf(m_decoded.front().samples);
        // Its memory serves the next frame.
        m_scratch = std::move(m_decoded.front().samples);
        m_decoded.pop_front();
    }
}

const FlacSamples* FlacFrames::Decode(std::uint64_t first, const Place& place) {
    const auto decoded = m_decodedAt.find(first);
    if (decoded != m_decodedAt.end()) return &decoded->second->samples;
    const std::optional<FlacPlace> found = m_finder.At({first, place.end, place.offset, place.next}, m_scratch);
    // The file was written to.
    if (!found || found->first != first || found->end != place.end) Refuse({first, place.end});
    Add(*found);
    return &m_decoded.back().samples;
}

void FlacFrames::Refuse(const Stretch& missing) const {
    const auto number = [](std::uint64_t value) { return Decimal(static_cast<std::int64_t>(value)); };
    const auto place = m_places.find(missing.first);
    const std::uint64_t offset = place == m_places.end() ? m_start : place->second.offset;
    throw ReadError(
        Say(u"samples %1 to %2 are damaged (from byte %3 on)", u"отсчёты с %1 по %2 повреждены (начиная с байта %3)",
            {number(missing.first + 1), number(missing.end), number(offset)}),
        m_finder.Source().ErrorLanguage());
}

}  // namespace quillon
