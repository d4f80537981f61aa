#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "norvik/private/CompanionPool.h"
#include "norvik/private/FrameBlock.h"
#include "norvik/private/SignalGroups.h"
#include "norvik/private/WfdbHeader.h"

namespace quillon {

/// Signals of a record that form blocks together, and where their samples lie.
struct WfdbGroup : SignalGroup {
    std::uint32_t samplesPerFrame = 1;
    std::shared_ptr<ByteSource> source;
    FrameLayout layout;
    std::shared_ptr<const std::vector<ChannelDescription>> channels;
};

/// A record that has signals of its own, with its files found.
struct WfdbRecord {
    WfdbHeader header;
    std::uint64_t frames = 0;  ///< that all files hold; at least 1
    std::vector<WfdbGroup> groups;
    std::vector<Bilingual> remarks;  ///< what is odd about the files
};

/// Finds the files of samples that a header names. `headerName`: the bare name of the header's file, by which files are
/// looked for that were renamed with it. Throws FormatError where a file is missing or cannot be understood, ReadError
/// when the device fails.
[[nodiscard]] WfdbRecord OpenWfdbRecord(WfdbHeader header, const std::u16string& headerName, CompanionPool& files);

}  // namespace quillon
