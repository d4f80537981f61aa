#include "dialogs/SplitTexts.h"

#include <algorithm>

#include "base/Text.h"
#include "dialogs/DialogTexts.h"
#include "export/ExportOutcome.h"

namespace quillon {

std::u16string SplitStatusText(const UserServices& services, const SplitChoices& choices, const SplitSource& source,
                               const SplitFolderState& folder) {
    const SplitPlan plan = MakeSplitPlan(choices, source);
    const std::u16string names = services.Text(IDS_SPLIT_FILES) + u": \"" + plan.ExampleName() + u'"';
    const auto about = [&](int id, std::int64_t files) {
        return names + u"\r\n" + FillPlaces(services.Text(id), {Decimal(files)});
    };
    if (choices.deleteFiles) return about(IDS_SPLIT_WILL_DELETE, std::ssize(folder.files));
    const std::int64_t replaced = FindSplitFault(choices, source) ? 0 : CountReplaced(plan, folder);
    return replaced > 0 ? about(IDS_SPLIT_WILL_REPLACE, replaced) : names;
}

std::u16string SplitCountText(const UserServices& services, const SplitChoices& choices, const SplitSource& source) {
    if (FindSplitFault(choices, source)) return {};
    const std::int64_t pieces = std::max<std::int64_t>(MakeSplitPlan(choices, source).PieceCount(), 0);
    return FillPlaces(services.Text(IDS_SPLIT_PIECES), {Decimal(pieces)});
}

std::u16string SplitProgressText(const UserServices& services, const SplitPlan& plan, std::int64_t piece,
                                 std::int32_t percent) {
    return FillPlaces(services.Text(IDS_SPLIT_PROGRESS),
                      {Decimal(piece + 1), Decimal(plan.PieceCount()), plan.Name(piece), Decimal(percent)});
}

std::u16string SplitFaultText(const UserServices& services, const SplitFault& fault, bool bySamples) {
    const int bad = bySamples ? IDS_SPLIT_BAD_SAMPLES : IDS_SPLIT_BAD_SECONDS;
    return FillPlaces(services.Text(fault.fault == EntryFault::TooLarge ? IDS_SPLIT_TOO_LARGE : bad),
                      {services.Text(fault.step ? IDS_SPLIT_STEP : IDS_SPLIT_SIZE), fault.typed});
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

std::u16string SplitResultText(const UserServices& services, const SplitPlan& plan, const SplitResult& result,
                               const std::u16string& folder) {
    const std::u16string written = Decimal(result.written);
    switch (result.end) {
        case SplitEnd::Done: return FillPlaces(services.Text(IDS_SPLIT_DONE), {written});
        case SplitEnd::DeleteFailed: return FillPlaces(services.Text(IDS_SPLIT_NOT_DELETED), {result.name});
        case SplitEnd::FolderFailed: return FillPlaces(services.Text(IDS_SPLIT_NO_FOLDER), {folder});
        case SplitEnd::PieceFailed: return FillPlaces(services.Text(IDS_SPLIT_FAILED), {result.name, written});
        case SplitEnd::Stopped:
            return StoppedText(services, result.written, plan.PieceCount(), plan.Name(0),
                               plan.Name(std::max<std::int64_t>(result.written, 1) - 1));
    }
    return {};
}

}  // namespace quillon
