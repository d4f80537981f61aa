#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "norvik/private/ByteSource.h"

namespace quillon {

/// The lines of a text file from its beginning on, piece by piece, in bytes that are UTF-8 or of an unknown code page.
/// UTF-16 is told by its mark, or by every other byte being 0. Lines end with LF, CR LF or, where there is no LF at the
/// beginning of the file, CR.
class TableText {
  public:
    /// Reads `pieceBytes` at a time.
    TableText(std::shared_ptr<ByteSource> source, std::size_t pieceBytes);

    /// The next whole lines, each with an LF at its end, which the last one of the file gets where it has none; empty
    /// at the end of the file. Valid until the next call. Throws ReadError, FormatError for a line beyond 4 MiB.
    [[nodiscard]] std::string_view NextLines();
    [[nodiscard]] std::uint64_t BytesRead() const { return m_offset; }
    [[nodiscard]] double Share() const;
    /// Whether the last line of the file was returned, and had no end.
    [[nodiscard]] bool EndedWithoutLineEnd() const { return m_unended; }
    /// Where a character 0 lies among the bytes read so far, counted from 0; npos without one.
    [[nodiscard]] std::size_t FindNull() const { return m_text.find('\0'); }

  private:
    enum class Encoding { Bytes, Utf16Little, Utf16Big };

    void FindEncoding();
    void ReadPiece();
    void Decode(std::string_view bytes);

    std::shared_ptr<ByteSource> m_source;
    std::size_t m_pieceBytes;
    std::uint64_t m_offset = 0;
    Encoding m_encoding = Encoding::Bytes;
    bool m_carriageReturns = false;  ///< alone, as line ends
    std::string m_bytes;             ///< UTF-16: what is not decoded
    std::string m_text;              ///< from the lines returned last on
    std::size_t m_used = 0;          ///< of m_text
    bool m_unended = false;
};

}  // namespace quillon
