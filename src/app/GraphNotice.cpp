#include "app/GraphNotice.h"

#include "base/StringIds.h"
#include "data/ChannelSelection.h"

namespace quillon {

GraphNotice NoticeOf(const QL_Global& global, const UserServices& services) {
    const ViewFile& file = global.file;
    if (!file.refusal.empty()) return {file.refusedName, services.Text(IDS_FILE_REFUSED) + u'\n' + file.refusal};
    if (!global.block.block) {
        const int how = global.fileCount > 0 ? IDS_HOW_TO_OPEN : IDS_HOW_TO_BEGIN;
        return {services.Text(IDS_NO_RECORDING), services.Text(how)};
    }
    if (global.block.sampleCount == 0) return {services.Text(IDS_NO_SAMPLES), {}};
    if (ShownChannels(global.block, global.slots).empty()) return {services.Text(IDS_NO_CHANNEL), {}};
    return {};
}

}  // namespace quillon
