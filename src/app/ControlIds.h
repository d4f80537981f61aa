#pragma once

namespace quillon {

/// Child windows of the main window, by their window identifier.
enum ControlId : int {
    tabPath = 100,
    lstDrive,
    lstDir,
    lvCh,
    tabFile,
    cboFileType,
    lstFile,
    lstBlock,
    pbGraph,
    pbScaleX,
    pbScaleY,
    scScaleX,
    scScaleY,
    btnZoomX,
    sbInfo,
};

}  // namespace quillon
