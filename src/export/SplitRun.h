#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "export/KVExport.h"
#include "export/SplitPlan.h"

namespace quillon {

/// What a run needs of its surroundings.
struct SplitSystem {
    /// Empties the output folder. Returns which file could not be deleted, or nothing when all are gone. None: the
    /// folder is not to be emptied.
    std::function<std::u16string()> deleteFiles = {};
    /// False when the folder neither exists nor can be made.
    std::function<bool()> createFolder = {};
    /// False when a piece could not be written; the user has been told why.
    std::function<bool(std::int64_t piece, const std::u16string& name)> exportPiece = {};
    /// Called before each piece. May be none.
    std::function<void(std::int64_t piece, const std::u16string& name)> status = {};
    /// Lets the program answer its windows; false ends the run. May be none.
    std::function<bool()> runPending = {};
};

enum class SplitEnd {
    Done,
    DeleteFailed,  ///< nothing was written
    FolderFailed,  ///< nothing was written
    PieceFailed,
    Stopped,  ///< because the program ends
};

struct SplitResult {
    SplitEnd end = SplitEnd::Done;
    std::int64_t written = 0;  ///< complete pieces, which stay whatever happened
    std::u16string name;       ///< the file that the end is about
};

/// Writes the pieces one after the other. Any failure ends the run where it happens.
[[nodiscard]] SplitResult RunSplit(const SplitPlan& plan, const SplitSystem& system);

/// Writes one piece to a file whose extension names its format.
[[nodiscard]] bool ExportPiece(KVExport& exporter, RecordingBlock& block, const SplitPlan& plan, std::int64_t piece,
                               const std::u16string& path);

}  // namespace quillon
