#include "norvik/win/ClipboardWriter.h"

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "base/win/Clipboard.h"

namespace quillon {

namespace {

/// Text is gathered in pieces, so that a long one is never moved as a whole.
constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

class ClipboardText final : public TextSink {
  public:
    ClipboardText() = default;
    ~ClipboardText() override {
        if (m_memory != nullptr) GlobalFree(m_memory);
    }
    ClipboardText(const ClipboardText&) = delete;
    ClipboardText& operator=(const ClipboardText&) = delete;

    void Write(std::string_view text) override {
        if (m_failed) return;
        try {
            // A piece ends with the text of one call, and so with a whole character.
            if (m_pieces.empty() || m_pieces.back().size() + text.size() > kPieceBytes) {
                m_pieces.emplace_back();
                m_pieces.back().reserve(std::max(kPieceBytes, text.size()));
            }
            m_pieces.back() += text;
            m_length += LengthOf(text);
        } catch (const std::exception&) {
            m_failed = true;
        }
    }

    [[nodiscard]] bool Failed() const override { return m_failed; }

    bool FinishPart() override {
        if (m_memory == nullptr && !m_failed) {
            m_memory = GlobalAlloc(GMEM_MOVEABLE, (m_length + 1) * sizeof(wchar_t));
            m_failed = m_memory == nullptr;
            if (m_failed) return false;
            *static_cast<wchar_t*>(GlobalLock(m_memory)) = 0;
            GlobalUnlock(m_memory);
        }
        if (m_failed || m_converted == m_pieces.size()) return false;
        std::string& piece = m_pieces[m_converted++];
        auto* const text = static_cast<wchar_t*>(GlobalLock(m_memory)) + m_end;
        // A piece is at most as many characters as it has bytes, and what is left has room for it.
        const auto room = static_cast<int>(std::min(piece.size(), m_length - m_end));
        const int count = MultiByteToWideChar(CP_UTF8, 0, piece.data(), static_cast<int>(piece.size()), text, room);
        text[count] = 0;
        m_end += static_cast<std::size_t>(count);
        GlobalUnlock(m_memory);
        // The text is never held twice.
        std::string().swap(piece);
        return true;
    }

    bool Close() override {
        while (FinishPart()) continue;
        if (m_failed || !ClipboardScope().Put(CF_UNICODETEXT, m_memory)) return false;
        m_memory = nullptr;
        return true;
    }

  private:
    /// At least the characters that the text becomes: one for each byte that begins one, two for those outside the
    /// basic plane.
    static std::size_t LengthOf(std::string_view text) {
        std::size_t length = 0;
        for (const char letter : text) {
            const auto byte = static_cast<unsigned char>(letter);
            if ((byte & 0xC0U) != 0x80U) length += byte >= 0xF0U ? 2 : 1;
        }
        return length;
    }

    std::vector<std::string> m_pieces;
    std::size_t m_length = 0;
    bool m_failed = false;
    HGLOBAL m_memory = nullptr;   ///< what the clipboard gets
    std::size_t m_converted = 0;  ///< pieces that it holds
    std::size_t m_end = 0;        ///< characters that it holds
};

}  // namespace

std::unique_ptr<TextSink> MakeClipboardText() {
    return std::make_unique<ClipboardText>();
}

}  // namespace quillon
