#include <gmock/gmock.h>

#include "app/win/DialogUser.h"
#include "app/win/MainWindowFixture.h"
#include "dialogs/win/OptionsLayout.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

class OptionsWindowTest : public MainWindowTest {
  protected:
    /// Sets one control of the options dialog as a user does and closes it by a button.
    void Set(int id, int position, int button = IDOK) {
        const DialogAnswer answer([=](HWND dialog) {
            const HWND control = FindChild(dialog, id);
            position < 0 ? static_cast<void>(SendMessageW(control, BM_CLICK, 0, 0)) : ChooseLine(control, position);
            PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
        });
        Command(mnuOptions);
    }
    /// Without the readout of a pointer that lies over the pictures when a dialog closes.
    Pixels Seen(int id) {
        Pump();
        for (const int box : {pbGraph, pbFFT}) SendMessageW(Control(box), WM_CANCELMODE, 0, 0);
        return Capture(id);
    }
};

TEST_F(OptionsWindowTest, EveryOptionIsSeenAtOnceAndCancelChangesNothing) {
    std::vector<std::vector<std::int16_t>> frames;
    for (int frame = 0; frame < 5000; ++frame)
        frames.push_back({static_cast<std::int16_t>(frame * 37 % 1000 - 500 + frame % 7 * 31 + 3)});
    FileBytes recording = BinRecording(100.0F, frames);
    recording.Patch(128 + 64, 0x3C4A2DB6, 4);  // a scale of 0.01234
    static_cast<void>(m_folder.Write(u"a.bin", recording));
    Start();
    ApplyDisplaySettings(m_global);
    Command(mnuSpectrogram);
    struct Change {
        int control;
        int position;  ///< in a list; -1: a button
        int seenIn;    ///< picture box
    };
    for (const Change& change :
         {Change{optTime + 1, -1, pbScaleX}, Change{cboTime, 4, pbScaleX}, Change{optTime + 2, -1, pbScaleX},
          Change{optScale + 1, -1, pbScaleY}, Change{optGridStyle + 1, -1, pbGraph},
          Change{optGridStyle + 2, -1, pbGraph}, Change{optFFTPalette + 1, -1, pbPal},
          Change{optFFTPalette + 2, -1, pbFFT}, Change{cboFFTWindow, 1, pbFFT}, Change{cboFFTSize, 6, pbFFT},
          Change{cboDBRange, 1, pbFFT}, Change{optSpectrumType + 1, -1, pbFFT}, Change{cboAmpScale, 0, pbFFT}}) {
        SCOPED_TRACE(change.control);
        const Pixels before = Seen(change.seenIn);
        const Settings settings = m_global.settings;
        Set(change.control, change.position, IDCANCEL);
        EXPECT_EQ(Seen(change.seenIn), before);
        Set(change.control, change.position);
        EXPECT_NE(Seen(change.seenIn), before);
    }
    // Those of the readout.
    m_global.settings.scaleFormat = 0;
    m_global.rawCodes = false;
    for (const Change& change : {Change{cboDigits, 2, 0}, Change{optDigits + 1, -1, 0}}) {
        SCOPED_TRACE(change.control);
        Command(mnuSelect);
        const std::u16string before = m_form->ValuesText();
        Set(change.control, change.position);
        Command(mnuSelect);
        EXPECT_NE(m_form->ValuesText(), before);
    }
    Set(optCursor + 3, -1);
    EXPECT_EQ(m_global.settings.waveformCursor, 3);
}

}  // namespace
}  // namespace quillon
