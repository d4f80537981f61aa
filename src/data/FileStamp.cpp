#include "data/FileStamp.h"

#include <algorithm>

namespace quillon {

bool RecordingStamp::IsKnown() const {
    return own.known && std::all_of(others.begin(), others.end(), [](const FileStamp& file) { return file.known; });
}

bool RecordingStamp::HasGrownSince(const RecordingStamp& before) const {
    bool grown = own.size > before.own.size;
    bool kept = own.IsSameFile(before.own) && own.size >= before.own.size && others.size() == before.others.size();
    for (std::size_t i = 0; kept && i < others.size(); ++i) {
        kept = others[i].IsSameFile(before.others[i]) && others[i].size >= before.others[i].size;
        grown = grown || others[i].size > before.others[i].size;
    }
    return kept && grown;
}

}  // namespace quillon
