#include "norvik/private/SignalGroups.h"

#include <map>
#include <tuple>

#include "base/Text.h"
#include "norvik/private/EdfHeader.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

std::vector<SignalGroup> GroupSignals(std::span<const SignalShape> shapes) {
    using Key = std::tuple<std::uint64_t, SampleKind, std::size_t>;
    std::vector<SignalGroup> groups;
    std::map<Key, std::size_t> known;
    std::map<std::uint64_t, std::size_t> groupsOfRate;
    for (std::size_t at = 0; at < shapes.size(); ++at) {
        const auto [entry, isNew] =
            known.try_emplace(Key{shapes[at].samplesPerRecord, shapes[at].kind, at / kBlockChannels}, groups.size());
        if (isNew) {
            groups.emplace_back();
            ++groupsOfRate[shapes[at].samplesPerRecord];
        }
        groups[entry->second].signals.push_back(at);
    }
    for (SignalGroup& group : groups) {
        const SignalShape& shape = shapes[group.signals.front()];
        if (groupsOfRate.size() > 1) group.title = PlainNumber(shape.rate) + u" Hz";
        if (groupsOfRate[shape.samplesPerRecord] == 1) continue;
        std::u16string range = Decimal(static_cast<std::int64_t>(group.signals.front() + 1));
        if (group.signals.size() > 1) range += u"-" + Decimal(static_cast<std::int64_t>(group.signals.back() + 1));
        group.title = JoinTitles(group.title, range);
    }
    return groups;
}

std::u16string JoinTitles(const std::u16string& first, const std::u16string& second) {
    return first.empty() || second.empty() ? first + second : first + u", " + second;
}

}  // namespace quillon
