#include "dialogs/SplitTexts.h"

#include "base/Text.h"
#include "dialogs/DialogTexts.h"

namespace quillon {

std::u16string SplitExampleText(const UserServices& services, const SplitPlan& plan) {
    return services.Text(IDS_SPLIT_FILES) + u": \"" + plan.ExampleName() + u'"';
}

std::u16string SplitProgressText(const UserServices& services, const SplitPlan& plan, std::int64_t piece,
                                 const std::u16string& name) {
    return FillPlaces(services.Text(IDS_SPLIT_PROGRESS), {Decimal(piece + 1), Decimal(plan.PieceCount()), name});
}

std::u16string SplitFaultText(const UserServices& services, int label, const std::u16string& typed, bool seconds,
                              EntryFault fault) {
    const int bad = seconds ? IDS_SPLIT_BAD_SECONDS : IDS_SPLIT_BAD_SAMPLES;
    return FillPlaces(services.Text(fault == EntryFault::TooLarge ? IDS_SPLIT_TOO_LARGE : bad),
                      {services.Text(label), typed});
}

std::u16string SplitObstacleText(const UserServices& services, SplitObstacle obstacle, const SplitPlan& plan,
                                 const std::u16string& folder) {
    const auto about = [&](int id, const std::u16string& what) { return FillPlaces(services.Text(id), {what}); };
    switch (obstacle) {
        case SplitObstacle::None: break;
        case SplitObstacle::NoPieces: return about(IDS_SPLIT_NO_PIECES, Decimal(plan.blockSamples));
        case SplitObstacle::NameTooLong: return about(IDS_SPLIT_LONG_NAME, plan.ExampleName());
        case SplitObstacle::NotFolder: return about(IDS_SPLIT_NOT_FOLDER, folder);
        case SplitObstacle::Unreadable: return about(IDS_SPLIT_UNREADABLE, folder);
        case SplitObstacle::HoldsRecording: return services.Text(IDS_SPLIT_RECORDING);
    }
    return {};
}

std::u16string SplitResultText(const UserServices& services, const SplitResult& result, const std::u16string& folder) {
    const std::u16string written = Decimal(result.written);
    switch (result.end) {
        case SplitEnd::Done: return FillPlaces(services.Text(IDS_SPLIT_DONE), {written});
        case SplitEnd::DeleteFailed: return FillPlaces(services.Text(IDS_SPLIT_NOT_DELETED), {result.name});
        case SplitEnd::FolderFailed: return FillPlaces(services.Text(IDS_SPLIT_NO_FOLDER), {folder});
        case SplitEnd::PieceFailed: return FillPlaces(services.Text(IDS_SPLIT_FAILED), {result.name, written});
        case SplitEnd::Stopped: return FillPlaces(services.Text(IDS_SPLIT_STOPPED), {written});
    }
    return {};
}

}  // namespace quillon
