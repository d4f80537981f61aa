#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/win/Win32.h"

namespace quillon {

/// A dialog template put together in memory, in the layout that DialogBoxIndirectParam takes. Places and sizes are in
/// dialog units, so that the dialog is right at any density.
class DialogTemplate {
  public:
    /// Classes of items that have a number.
    static constexpr std::uint16_t kButton = 0x80;
    static constexpr std::uint16_t kEdit = 0x81;
    static constexpr std::uint16_t kStatic = 0x82;
    static constexpr std::uint16_t kComboBox = 0x85;

    /// A dialog of its own, and one that is part of another.
    static constexpr DWORD kWindow = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER;
    static constexpr DWORD kPage = WS_CHILD | DS_CONTROL;

    DialogTemplate(const std::wstring& title, short width, short height, std::uint16_t items, DWORD style = kWindow) {
        Number32(style | DS_SETFONT);
        Number32(0);
        m_words.push_back(items);
        Box(0, 0, width, height);
        m_words.push_back(0);  // no menu
        m_words.push_back(0);  // the standard class
        Text(title);
        m_words.push_back(8);
        Text(L"Tahoma");
    }
    void Item(std::uint16_t windowClass, DWORD style, int id, const std::wstring& text, short x, short y, short width,
              short height) {
        StartItem(style, windowClass == kEdit ? WS_EX_CLIENTEDGE : 0, id, x, y, width, height);
        m_words.push_back(0xFFFF);
        m_words.push_back(windowClass);
        EndItem(text);
    }
    /// An item of a class that has a name.
    void Item(const std::wstring& windowClass, DWORD style, int id, short x, short y, short width, short height,
              DWORD extendedStyle = WS_EX_CLIENTEDGE) {
        StartItem(style, extendedStyle, id, x, y, width, height);
        Text(windowClass);
        EndItem({});
    }
    [[nodiscard]] const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(m_words.data()); }

  private:
    void StartItem(DWORD style, DWORD extendedStyle, int id, short x, short y, short width, short height) {
        if (m_words.size() % 2 != 0) m_words.push_back(0);
        Number32(WS_CHILD | WS_VISIBLE | style);
        Number32(extendedStyle);
        Box(x, y, width, height);
        m_words.push_back(static_cast<std::uint16_t>(id));
    }
    void EndItem(const std::wstring& text) {
        Text(text);
        m_words.push_back(0);  // no creation data
    }
    void Number32(DWORD number) {
        m_words.push_back(LOWORD(number));
        m_words.push_back(HIWORD(number));
    }
    void Box(short x, short y, short width, short height) {
        for (const short side : {x, y, width, height}) m_words.push_back(static_cast<std::uint16_t>(side));
    }
    void Text(const std::wstring& text) {
        for (const wchar_t letter : text) m_words.push_back(static_cast<std::uint16_t>(letter));
        m_words.push_back(0);
    }

    std::vector<std::uint16_t> m_words;
};

}  // namespace quillon
