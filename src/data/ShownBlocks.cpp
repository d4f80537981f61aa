#include "data/ShownBlocks.h"

#include <algorithm>
#include <utility>

#include "data/ShownBlock.h"

namespace quillon {

namespace {

/// Two settings of a dozen blocks; each keeps some MB of pages at most.
constexpr std::size_t kMostMade = 24;

}  // namespace

template <typename Make>
ShownBlocks::Block ShownBlocks::Find(Made wanted, const Make& make) {
    const auto found = std::find_if(m_made.begin(), m_made.end(), [&](const Made& made) {
        return made.stored == wanted.stored && made.pairs == wanted.pairs && made.settings == wanted.settings &&
               made.shown == wanted.shown;
    });
    if (found != m_made.end()) {
        std::rotate(m_made.begin(), found, found + 1);
    } else {
        wanted.block = make();
        m_made.push_front(std::move(wanted));
        if (m_made.size() > kMostMade) m_made.pop_back();
    }
    return m_made.front().block;
}

ShownBlocks::Block ShownBlocks::Of(const Block& stored, const ShownSettings& settings, const std::vector<bool>& shown) {
    ShownSettings own = settings;
    own.montage.reset();
    if (own == ShownSettings()) return stored;
    // Which channels are shown matters for their average only.
    const bool average = settings.reference.kind == Reference::Kind::Average;
    return Find({stored, own, average ? shown : std::vector<bool>(), false, nullptr},
                [&] { return MakeShownBlock(stored, own, shown); });
}

ShownBlocks::Block ShownBlocks::PairsOf(const Block& stored, const ShownSettings& settings) {
    if (!settings.montage) return nullptr;
    ShownSettings own = settings;
    own.reference = {};
    return Find({stored, own, {}, true, nullptr}, [&] { return MakeMontageBlock(stored, own); });
}

bool ShownBlocks::Keeps(const RecordingBlock* block) const {
    return std::any_of(m_made.begin(), m_made.end(),
                       [&](const Made& made) { return made.block.get() == block || made.stored.get() == block; });
}

}  // namespace quillon
