#include "export/SplitRun.h"

namespace quillon {

SplitResult RunSplit(const SplitPlan& plan, const SplitSystem& system) {
    const auto stopped = [&] { return system.runPending && !system.runPending(); };
    SplitResult result;
    if (system.deleteFiles) {
        result.name = system.deleteFiles();
        if (!result.name.empty()) {
            result.end = SplitEnd::DeleteFailed;
            return result;
        }
        if (stopped()) {
            result.end = SplitEnd::Stopped;
            return result;
        }
    }
    if (!system.createFolder()) {
        result.end = SplitEnd::FolderFailed;
        return result;
    }
    const std::int64_t pieces = plan.PieceCount();
    for (std::int64_t piece = 0; piece < pieces; ++piece) {
        result.name = plan.Name(piece);
        if (!system.exportPiece(piece, result.name)) {
            result.end = stopped() ? SplitEnd::Stopped : SplitEnd::PieceFailed;
            return result;
        }
        ++result.written;
        // After the last piece the run is complete even if the program is about to end.
        if (stopped() && result.written < pieces) {
            result.end = SplitEnd::Stopped;
            return result;
        }
    }
    return result;
}

bool ExportPiece(KVExport& exporter, RecordingBlock& block, const SplitPlan& plan, std::int64_t piece,
                 const std::u16string& path, EdfPlusRequest edfPlus) {
    constexpr std::int32_t byExtension = 0;
    const std::int32_t first = plan.FirstSample(piece);
    if (!plan.edfPlus) return exporter.Export(&block, path, first, plan.size, byExtension);
    edfPlus.first = first;
    edfPlus.count = plan.size;
    return exporter.ExportEdfPlus(&block, path, edfPlus);
}

}  // namespace quillon
