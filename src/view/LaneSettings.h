#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "data/Document.h"
#include "data/UnitGroups.h"

namespace quillon {

/// What the lanes know of a signal, see Document. Values are in its unit, or codes where these are shown.
struct LaneChannel {
    std::u16string title;
    /// By which its settings are kept: the title, and the how manieth signal of that title it is in the recording.
    std::u16string key;
    UnitGroup group;       ///< of its unit; codes are a group of their own, whose name no unit can have
    double perCode = 0.0;  ///< value of a code = code x perCode + offset; 0 for a channel without a scale
    double offset = 0.0;
    bool isHighPassed = false;  ///< what is constant is taken away
    bool shown = false;
    std::int16_t number = 0;  ///< acquisition channel number, which gives its colour
    std::size_t place = 0;    ///< among the signals in the order of the recording
    [[nodiscard]] double ValueOf(double code) const { return code * perCode + offset; }
};

/// All signals, by their numbers: the first one is 1.
[[nodiscard]] std::vector<LaneChannel> LaneChannelsOf(const Document& document, bool rawCodes);

/// Scales of lanes, in steps of ScaleSteps.h.
struct LaneScales {
    /// Of one channel.
    struct Own {
        int step = 0;                   ///< by which its scale is finer than that of its group
        double middle = 0.0;            ///< value in the middle of its lane
        double middleHighPassed = 0.0;  ///< the same as long as a high pass takes away what is constant
        [[nodiscard]] double Middle(const LaneChannel& of) const { return of.isHighPassed ? middleHighPassed : middle; }
        double& Middle(const LaneChannel& of) { return of.isHighPassed ? middleHighPassed : middle; }
        friend bool operator==(const Own&, const Own&) = default;
    };
    std::map<std::u16string, int> groups;    ///< base units per lane height, by the group's name
    std::map<std::u16string, Own> channels;  ///< by key
    friend bool operator==(const LaneScales&, const LaneScales&) = default;

    [[nodiscard]] int StepOf(const UnitGroup& group) const;
    [[nodiscard]] Own OwnOf(const LaneChannel& channel) const;
    /// Values of the channel from its lane's lower edge to its upper one.
    [[nodiscard]] double ValuesPerLane(const LaneChannel& channel) const;
};

/// All that was chosen about lanes. It is kept until the program ends, for all blocks whose channels have the same
/// titles.
struct LaneSettings {
    bool on = false;          ///< every channel has a lane; else all share one axis
    bool clip = false;        ///< traces end at the edges of their lanes
    bool negativeUp = false;  ///< values grow downwards
    std::int32_t first = 0;   ///< first visible lane; may be beyond what a block has
    LaneScales values;
    LaneScales codes;                   ///< where codes are shown instead of values
    std::vector<std::u16string> order;  ///< keys from top to bottom
    friend bool operator==(const LaneSettings&, const LaneSettings&) = default;
};

/// Indexes of the channels from top to bottom: those with a known key stand in that order at the places that
/// they have in the recording, the others stay at theirs.
[[nodiscard]] std::vector<std::size_t> LaneOrder(const std::vector<LaneChannel>& channels,
                                                 const std::vector<std::u16string>& order);
/// Makes that the order of the channels. The keys of other blocks keep their order among themselves.
void SetLaneOrder(const std::vector<LaneChannel>& channels, const std::vector<std::size_t>& positions,
                  std::vector<std::u16string>& order);

}  // namespace quillon
