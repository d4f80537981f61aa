#pragma once

namespace quillon {

/// Child windows of the main window, by their window identifier.
enum ControlId : int {
    tbMain = 100,
    tbGoTo,
    tabPath,
    lstDrive,
    pbPathList,
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
    pnValues,
    sbInfo,
    pbFFT,
    pbPal,
    pbScaleF,
    // The row of filters, in its order.
    lblFilterGroup,
    lblHighPass,
    cboHighPass,
    lblLowPass,
    cboLowPass,
    lblNotch,
    cboNotch,
    cboFilterOrder,
    cboFilterDirection,
    // The page of marks.
    edtMarks,
    lvMarks,
    // Beside the palette bar.
    pbLevels,
    pbOverview,
};

}  // namespace quillon
