#pragma once

namespace quillon {

/// From now on a DLL named without its folder comes from the system's folder alone, not from that of the program or the
/// current one, where anybody may have put one of that name. To be called before the first function of a DLL that is
/// loaded on demand.
void LoadSystemDllsOnly();

}  // namespace quillon
