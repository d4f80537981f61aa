#include "view/SoloScales.h"

namespace quillon {

void SoloScales::Keep(const AmplitudeScale& axis, const LaneSettings& lanes) {
    if (!m_kept) m_kept = Kept{axis.Index(), axis.Shift(), lanes.values, lanes.codes};
}

void SoloScales::GiveBack(AmplitudeScale& axis, ChannelLanes& lanes) {
    if (!m_kept) return;
    axis.SelectScale(m_kept->scale);
    axis.MoveBaseLine(m_kept->shift - axis.Shift());
    LaneSettings settings = lanes.Settings();
    settings.values = m_kept->values;
    settings.codes = m_kept->codes;
    lanes.Restore(settings);
    m_kept.reset();
}

}  // namespace quillon
