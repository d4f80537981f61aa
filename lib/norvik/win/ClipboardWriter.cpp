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
    void Write(std::string_view text) override {
        if (m_failed) return;
        try {
            // A piece ends with the text of one call, and so with a whole character.
            if (m_pieces.empty() || m_pieces.back().size() + text.size() > kPieceBytes) {
                m_pieces.emplace_back();
                m_pieces.back().reserve(std::max(kPieceBytes, text.size()));
            }
            m_pieces.back() += text;
        } catch (const std::exception&) {
            m_failed = true;
        }
    }

    [[nodiscard]] bool Failed() const override { return m_failed; }

    bool Close() override {
        if (m_failed) return false;
        std::size_t length = 1;
        for (const std::string& piece : m_pieces) length += Convert(piece, nullptr, 0);
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, length * sizeof(wchar_t));
        if (memory == nullptr) return false;
        auto* text = static_cast<wchar_t*>(GlobalLock(memory));
        for (std::string& piece : m_pieces) {
            text += Convert(piece, text, piece.size());
            // The text is never held twice.
            std::string().swap(piece);
        }
        *text = 0;
        GlobalUnlock(memory);
        const bool done = ClipboardScope().Put(CF_UNICODETEXT, memory);
        if (!done) GlobalFree(memory);
        return done;
    }

  private:
    /// Characters of a piece, in `out` too unless that is null.
    static std::size_t Convert(const std::string& piece, wchar_t* out, std::size_t room) {
        return static_cast<std::size_t>(
            MultiByteToWideChar(CP_UTF8, 0, piece.data(), static_cast<int>(piece.size()), out, static_cast<int>(room)));
    }

    std::vector<std::string> m_pieces;
    bool m_failed = false;
};

}  // namespace

std::unique_ptr<TextSink> MakeClipboardText() {
    return std::make_unique<ClipboardText>();
}

}  // namespace quillon
