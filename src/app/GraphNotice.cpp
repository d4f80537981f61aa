#include "app/GraphNotice.h"

#include "app/StringIds.h"

namespace quillon {

GraphNotice NoticeOf(const Document& document, std::int32_t fileCount, const UserServices& services) {
    const ViewFile& file = document.File();
    if (!file.refusal.empty()) return {file.refusedName, services.Text(IDS_FILE_REFUSED) + u'\n' + file.refusal};
    if (!document.Block().block) {
        const int how = fileCount > 0 ? IDS_HOW_TO_OPEN : IDS_HOW_TO_BEGIN;
        return {services.Text(IDS_NO_RECORDING), services.Text(how)};
    }
    if (document.Block().sampleCount == 0) return {services.Text(IDS_NO_SAMPLES), {}};
    for (std::int16_t signal = 1; signal <= document.SignalCount(); ++signal) {
        if (document.IsShown(signal)) return {};
    }
    return {services.Text(IDS_NO_CHANNEL), {}};
}

}  // namespace quillon
