#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "norvik/NorvikCore.h"

/// The records in which the viewer keeps what it has read. Each is reset by assigning a fresh one.
namespace quillon {

/// Number of channel slots; acquisition channel numbers are 0 .. kSlotCount-1.
inline constexpr std::int16_t kSlotCount = 32;

/// The open recording.
struct ViewFile {
    std::u16string fileName;  ///< full path; empty when no file is open, which is the test for it everywhere
    std::u16string fileInfo;
    std::int16_t blockCount = 0;
    std::int16_t currentBlockIndex = -1;  ///< position of the loaded block, from 0; -1 when none
    std::shared_ptr<Recording> recording;
    std::u16string refusedName;  ///< name, without its folder, of the file that was refused instead
    std::u16string refusal;      ///< why it was; empty where none was
};

/// One mark of the loaded block.
struct BlockMark {
    std::int32_t position = 0;  ///< sample index, from 0
    std::u16string text;
    double seconds = 0.0;  ///< duration; 0: not known
};

/// The loaded block.
struct ViewBlock {
    std::shared_ptr<RecordingBlock> block;        ///< as it is shown: filtered, with a reference
    std::shared_ptr<RecordingBlock> stored = {};  ///< as it is recorded; what is saved, played and analysed
    std::int32_t sampleCount = 0;                 ///< per channel
    double sampleRate = 0.0;                      ///< Hz; the time of sample n is n / sampleRate seconds
    double startTime = 0.0;                       ///< automation date of the first sample
    std::int16_t channelCount = 0;
    std::vector<std::int16_t> channelNumbers;  ///< per channel: acquisition channel number, index of its slot
    std::vector<float> invScale;               ///< per channel: 1 / scale
    std::vector<float> offsets;                ///< per channel
    std::vector<BlockMark> marks;              ///< in order of their positions
};

/// What is kept per acquisition channel number for the whole run of the program.
struct ChannelSlot {
    std::u16string title;
    std::u16string unit;
    bool shown = true;
};

using ChannelSlots = std::array<ChannelSlot, kSlotCount>;

}  // namespace quillon
