#include "app/win/SpectrumBoxes.h"

#include <algorithm>

#include "app/StringIds.h"
#include "app/ViewTables.h"
#include "base/win/WinHandle.h"

namespace quillon {

namespace {

constexpr std::size_t kChannel = 0, kLength = 1, kWindow = 2, kFrequencies = 3, kLevels = 4;

/// The line of a value; the first one where it is not there.
template <typename Value>
std::size_t LineOf(const std::vector<Value>& values, Value value) {
    const auto found = std::find(values.begin(), values.end(), value);
    return found == values.end() ? 0 : static_cast<std::size_t>(found - values.begin());
}

}  // namespace

void SpectrumBoxes::Attach(const std::array<HWND, kSpectrumBoxes>& boxes, const ScreenDensity& density) {
    m_boxes = boxes;
    m_density = &density;
}

void SpectrumBoxes::Fill(std::size_t box, const std::vector<std::u16string>& texts, std::size_t chosen) {
    SendMessageW(m_boxes[box], CB_RESETCONTENT, 0, 0);
    for (const std::u16string& text : texts) SendPointer(m_boxes[box], CB_ADDSTRING, 0, Wide(text).c_str());
    SendMessageW(m_boxes[box], CB_SETCURSEL, chosen, 0);
    Measure(box);
}

void SpectrumBoxes::Measure(std::size_t box) {
    const WindowDC dc(m_boxes[box]);
    const SelectScope font(dc.Get(), m_density->Font());
    LONG widest = 0;
    const std::u16string name = PlainCaption(m_services.Text(IDS_SPECTRUM_NAME_0 + static_cast<int>(box)));
    SIZE label{};
    GetTextExtentPoint32W(dc.Get(), Wide(name).c_str(), static_cast<int>(name.size()), &label);
    const LRESULT lines = SendMessageW(m_boxes[box], CB_GETCOUNT, 0, 0);
    for (WPARAM line = 0; static_cast<LRESULT>(line) < lines; ++line) {
        const LRESULT length = SendMessageW(m_boxes[box], CB_GETLBTEXTLEN, line, 0);
        std::wstring text(static_cast<std::size_t>(std::max<LRESULT>(length, 0)), L'\0');
        SendPointer(m_boxes[box], CB_GETLBTEXT, line, text.data());
        SIZE size{};
        GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
        widest = std::max(widest, size.cx);
    }
    // Beside the text its margins and the arrow.
    const LONG closed = widest + m_density->Metric(SM_CXVSCROLL) + m_density->Scaled(14);
    m_widths[box] = static_cast<std::int32_t>(std::max(closed, label.cx));
}

void SpectrumBoxes::DensityChanged() {
    for (std::size_t box = 0; box < kSpectrumBoxes; ++box) Measure(box);
}

void SpectrumBoxes::Fill(const SpectrumCommands& spectra) {
    const SpectrumChoices& choices = spectra.Choices();
    const auto texts = [&](int first, int count) {
        std::vector<std::u16string> lines;
        for (int at = 0; at < count; ++at) lines.push_back(m_services.Text(first + at));
        return lines;
    };
    m_signals = spectra.Signals();
    std::vector<std::u16string> titles{m_services.Text(IDS_SPECTRUM_ALL)};
    for (const std::int16_t signal : m_signals) titles.push_back(spectra.TitleOf(signal));
    m_signals.insert(m_signals.begin(), std::int16_t{0});
    Fill(kChannel, titles, LineOf(m_signals, choices.signal));
    m_lengths = spectra.Lengths();
    std::vector<std::u16string> lengths;
    for (const std::int32_t length : m_lengths) lengths.push_back(spectra.LengthText(length));
    // A length that does not fit stands for the longest one that does.
    const auto fitting = std::upper_bound(m_lengths.begin(), m_lengths.end(), choices.length);
    Fill(kLength, lengths, static_cast<std::size_t>(fitting - m_lengths.begin()) - 1);
    Fill(kWindow, texts(IDS_OPT_WINDOW_0, 4), static_cast<std::size_t>(choices.window));
    Fill(kFrequencies, texts(IDS_SPECTRUM_FREQUENCY_0, 2), choices.scales.logFrequency ? 1 : 0);
    Fill(kLevels, texts(IDS_SPECTRUM_LEVEL_0, 3), static_cast<std::size_t>(choices.scales.levels));
}

std::size_t SpectrumBoxes::Line(std::size_t box) const {
    return static_cast<std::size_t>(std::max<LRESULT>(SendMessageW(m_boxes[box], CB_GETCURSEL, 0, 0), 0));
}

SpectrumChoices SpectrumBoxes::Chosen() const {
    SpectrumChoices choices;
    choices.signal = m_signals[std::min(Line(kChannel), m_signals.size() - 1)];
    choices.length = m_lengths[std::min(Line(kLength), m_lengths.size() - 1)];
    choices.window = static_cast<std::int16_t>(Line(kWindow));
    choices.scales = {Line(kFrequencies) == 1, static_cast<LevelScale>(Line(kLevels))};
    return choices;
}

std::int32_t SpectrumBoxes::Height() const {
    RECT box{};
    GetWindowRect(m_boxes[kChannel], &box);
    return static_cast<std::int32_t>(box.bottom - box.top);
}

}  // namespace quillon
