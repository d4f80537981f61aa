#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "export/KVExport.h"
#include "export/SplitPlan.h"

namespace quillon {

/// Callbacks of a run.
struct SplitSystem {
    /// Empties the output folder. Returns which file could not be deleted, or nothing when all are gone. None: the
    /// folder is not to be emptied.
    std::function<std::u16string()> deleteFiles = {};
    /// False when the folder neither exists nor can be made.
    std::function<bool()> createFolder = {};
    /// False when a piece was stopped or could not be written; the reason has been shown to the user.
    std::function<bool(std::int64_t piece, const std::u16string& name)> exportPiece = {};
    /// Lets the program process window messages; false stops the run, and again at every further call. May be empty.
    std::function<bool()> runPending = {};
};

enum class SplitEnd {
    Done,
    DeleteFailed,  ///< nothing was written
    FolderFailed,  ///< nothing was written
    PieceFailed,
    Stopped,  ///< by the user or the end of the program
};

struct SplitResult {
    SplitEnd end = SplitEnd::Done;
    std::int64_t written = 0;  ///< complete pieces; they are kept even if the run failed
    std::u16string name;       ///< the file that the end of the run refers to
};

/// Writes the pieces one after the other. Any failure ends the run where it happens.
[[nodiscard]] SplitResult RunSplit(const SplitPlan& plan, const SplitSystem& system);

/// Writes one piece to a file whose extension names its format. `edfPlus` says what goes into a piece of EDF+ besides
/// its range.
[[nodiscard]] bool ExportPiece(KVExport& exporter, RecordingBlock& block, const SplitPlan& plan, std::int64_t piece,
                               const std::u16string& path, EdfPlusRequest edfPlus = {});

}  // namespace quillon
