#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/ControlStyles.h"

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
    static constexpr std::uint32_t kWindow =
        control::kPopup | control::kCaption | control::kSystemMenu | control::kModalFrame | control::kCenter;
    static constexpr std::uint32_t kPage = control::kChild | control::kIsControl;

    DialogTemplate(std::u16string_view title, short width, short height, std::uint32_t style = kWindow) {
        Number32(style | control::kSetFont);
        Number32(0);
        m_words.push_back(0);  // items, see StartItem
        Box(0, 0, width, height);
        m_words.push_back(0);  // no menu
        m_words.push_back(0);  // the standard class
        Text(title);
        m_words.push_back(8);
        Text(u"Tahoma");
    }
    void Item(std::uint16_t windowClass, std::uint32_t style, int id, std::u16string_view text, short x, short y,
              short width, short height) {
        StartItem(style, windowClass == kEdit ? control::kClientEdge : 0, id, x, y, width, height);
        m_words.push_back(0xFFFF);
        m_words.push_back(windowClass);
        EndItem(text);
    }
    /// An item of a class that has a name.
    void Item(std::u16string_view windowClass, std::uint32_t style, int id, short x, short y, short width, short height,
              std::uint32_t extendedStyle = control::kClientEdge) {
        StartItem(style, extendedStyle, id, x, y, width, height);
        Text(windowClass);
        EndItem({});
    }
    /// A label of no size: the name of the list or field that follows, for programs that read the screen aloud.
    void Name(std::u16string text) {
        std::erase(text, u'&');
        Item(kStatic, control::kNoPrefix, 0xFFFF, text, 0, 0, 0, 0);
    }
    /// A DLGTEMPLATE for the system.
    [[nodiscard]] const void* Get() const { return m_words.data(); }

  private:
    static constexpr std::size_t kItems = 4;  ///< place of their number

    void StartItem(std::uint32_t style, std::uint32_t extendedStyle, int id, short x, short y, short width,
                   short height) {
        ++m_words[kItems];
        if (m_words.size() % 2 != 0) m_words.push_back(0);
        Number32(control::kChild | control::kVisible | style);
        Number32(extendedStyle);
        Box(x, y, width, height);
        m_words.push_back(static_cast<std::uint16_t>(id));
    }
    void EndItem(std::u16string_view text) {
        Text(text);
        m_words.push_back(0);  // no creation data
    }
    void Number32(std::uint32_t number) {
        m_words.push_back(static_cast<std::uint16_t>(number));
        m_words.push_back(static_cast<std::uint16_t>(number >> 16));
    }
    void Box(short x, short y, short width, short height) {
        for (const short side : {x, y, width, height}) m_words.push_back(static_cast<std::uint16_t>(side));
    }
    void Text(std::u16string_view text) {
        m_words.insert(m_words.end(), text.begin(), text.end());
        m_words.push_back(0);
    }

    std::vector<std::uint16_t> m_words;
};

}  // namespace quillon
