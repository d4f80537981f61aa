#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "nsp/FilterDesign.h"

namespace quillon {

/// What is subtracted from the channels that are shown.
struct Reference {
    enum class Kind {
        AsRecorded,
        Average,  ///< of the shown channels of the unit's group, the channel itself included
        Channel,  ///< one channel of the block, for all others of its unit's group
    };
    Kind kind = Kind::AsRecorded;
    std::u16string channel;  ///< its title; empty for the other kinds
    friend bool operator==(const Reference&, const Reference&) = default;
};

/// Pairs of channels whose differences are shown as signals of their own.
struct Montage {
    std::u16string name;
    std::u16string pairs;  ///< as the user wrote them, see PairsOf (Montages.h)
    friend bool operator==(const Montage&, const Montage&) = default;
};

/// How signals are shown. What is stored stays as it is. With the default values what is shown is what is stored.
struct ShownSettings {
    std::map<std::u16string, nsp::FilterSettings> filters;  ///< by the name of the unit's group; none: off
    std::set<std::u16string> unfiltered;                    ///< titles of channels that no filter changes
    Reference reference;
    std::optional<Montage> montage;
    friend bool operator==(const ShownSettings&, const ShownSettings&) = default;

    /// Of the channels of a group.
    [[nodiscard]] nsp::FilterSettings FilterOf(const std::u16string& group) const {
        const auto found = filters.find(group);
        return found != filters.end() ? found->second : nsp::FilterSettings();
    }
};

}  // namespace quillon
