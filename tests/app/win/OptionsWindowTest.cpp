#include <gmock/gmock.h>

#include <map>
#include <sstream>

#include "app/win/DialogUser.h"
#include "app/win/MainWindowFixture.h"
#include "base/Text.h"
#include "dialogs/win/OptionsLayout.h"
#include "view/ScaleLabels.h"

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
    /// What the window shows that an option decides on.
    [[nodiscard]] std::map<std::string, std::string> Seen() {
        Pump();
        for (const int box : {pbGraph, pbFFT}) SendMessageW(Control(box), WM_CANCELMODE, 0, 0);
        m_global.view->Select(1, 101);
        Command(mnuMove + 5);
        const auto line = [](const std::u16string& text, std::size_t at) {
            std::istringstream lines(Utf8(text));
            std::string one;
            for (std::size_t skipped = 0; skipped <= at; ++skipped) std::getline(lines, one);
            return one.substr(0, one.find('\r'));
        };
        const std::u16string values = m_form->ValuesText();
        // The grid without what crosses it.
        Command(mnuChShow + 1);
        m_global.view->Deselect();
        const auto name = [&](int box) {
            const Pixels pixels = Capture(box);
            return std::to_string(std::hash<std::string_view>()(
                {reinterpret_cast<const char*>(pixels.rgb.data()), pixels.rgb.size() * 4}));
        };
        const std::string grid = name(pbGraph);
        Command(mnuChShow);
        return {
            {"time", Utf8(TimeLabels(m_global.view->Axis(), m_global.document->Block(), m_global.format).at(1).text)},
            {"amplitude", Utf8(AmplitudeLabels(m_global.view->GetLanes(), m_global.view->RawCodes(), u'.').at(0).text)},
            {"length", line(values, 0)},
            {"value", line(values, 1)},
            {"grid", grid},
            {"cursor", std::to_string(m_global.settings.waveformCursor)},
            {"palette", name(pbPal)},
            {"spectrogram", name(pbFFT)}};
    }
};

TEST_F(OptionsWindowTest, EveryOptionIsSeenAtOnceAndCancelChangesNothing) {
    FileBytes recording = SawRecording(5000);
    recording.Patch(128 + 64, 0x3C4A2DB6, 4);  // a scale of 0.01234
    static_cast<void>(m_folder.Write(u"a.bin", recording));
    Start();
    ApplyDisplaySettings(m_global);
    Command(mnuSpectrogram);
    struct Change {
        int control;
        int position;  ///< in a list; -1: a button
        const char* seen;
    };
    for (const Change& change : {
             Change{optTime + 1, -1, "time=1"},
             {cboTime, 4, "length=dX:\t1010 ms time=1000"},
             {optTime + 2, -1, "length=dX:\t101 time=101"},
             {cboDigits, 2, "value=Ch1:\t 0 V‡ 1.2 V\t 0.012 V"},
             {optDigits + 1, -1, "value=Ch1:\t 0 V‡ 1.22 V\t 0.01 V"},
             {optScale + 1, -1, "amplitude=120 grid value=Ch1:\t 0‡ 99\t 1"},
             {optGridStyle + 1, -1, "grid"},
             {optGridStyle + 2, -1, "grid"},
             {optCursor + 3, -1, "cursor=3"},
             {optFFTPalette + 1, -1, "palette spectrogram"},
             {cboFFTWindow, 1, "spectrogram"},
             {cboFFTSize, 6, "spectrogram"},
             {cboDBRange, 1, "spectrogram"},
             {optSpectrumType + 1, -1, "spectrogram"},
             {cboAmpScale, 0, "spectrogram"},
         }) {
        SCOPED_TRACE(change.control);
        const auto before = Seen();
        Set(change.control, change.position, IDCANCEL);
        EXPECT_EQ(Seen(), before);
        Set(change.control, change.position);
        std::string changes;
        for (const auto& [name, value] : Seen()) {
            if (before.at(name) == value) continue;
            const bool picture = name == "grid" || name == "palette" || name == "spectrogram";
            changes += (changes.empty() ? "" : " ") + name + (picture ? "" : '=' + value);
        }
        EXPECT_EQ(changes, change.seen);
    }
}

}  // namespace
}  // namespace quillon
