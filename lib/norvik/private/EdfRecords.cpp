#include "norvik/private/EdfRecords.h"

#include <algorithm>

#include "norvik/private/FileBlock.h"

namespace quillon {

namespace {

/// A read costs about as much as this many bytes more; that many are fetched at least.
constexpr std::uint64_t kReadCost = 4096;
/// Bytes of one stream to be read at once when several are read side by side: whole samples of 2, 3, 4 and 8 bytes.
std::uint64_t ChunkBytes(std::size_t streams) {
    constexpr std::uint64_t whole = 24;
    return std::max(kPieceBytes / streams / whole, std::uint64_t{1}) * whole;
}

}  // namespace

EdfRecords::EdfRecords(std::shared_ptr<ByteSource> source, std::uint64_t start, std::uint64_t recordBytes)
    : m_source(std::move(source)), m_start(start), m_recordBytes(recordBytes) {}

const std::uint8_t* EdfRecords::Read(PieceBuffer& buffer, std::uint64_t offset, std::uint64_t count) {
    return buffer.Read(*m_source, m_start + offset, static_cast<std::size_t>(count));
}

void EdfRecords::Visit(std::span<const std::uint64_t> offsets, std::uint64_t partBytes, std::uint64_t first,
                       std::uint64_t count, const Visitor& visitor) {
    if (offsets.empty()) return;
    m_streams.resize(offsets.size());
    const auto [lowest, highest] = std::minmax_element(offsets.begin(), offsets.end());
    const Request request{offsets, *lowest, *highest - *lowest, partBytes, first, first + count, visitor};
    for (std::uint64_t at = first; at < request.end;) {
        const std::uint64_t size = std::min(partBytes - at % partBytes, request.end - at);
        const std::uint64_t window = request.spread + size;
        const bool farApart = m_recordBytes > kSmallRecord && offsets.size() * (size + kReadCost) < window;
        at += window > kPieceBytes || farApart ? VisitParts(request, at) : VisitPiece(request, at);
    }
}

std::uint64_t EdfRecords::VisitParts(const Request& request, std::uint64_t at) {
    const std::uint64_t record = at / request.partBytes;
    const std::uint64_t begin = at % request.partBytes;
    const std::uint64_t size = std::min(request.partBytes - begin, request.end - at);
    m_parts.resize(std::max(m_parts.size(), m_streams.size()));
    for (std::uint64_t done = 0; done < size;) {
        const std::uint64_t chunk = std::min(ChunkBytes(m_streams.size()), size - done);
        for (std::size_t stream = 0; stream < m_streams.size(); ++stream) {
            const std::uint64_t place = record * m_recordBytes + request.offsets[stream] + begin + done;
            m_streams[stream] = Read(m_parts[stream], place, chunk);
        }
        request.visitor(at - request.first + done, m_streams, static_cast<std::size_t>(chunk));
        done += chunk;
    }
    return size;
}

std::uint64_t EdfRecords::VisitPiece(const Request& request, std::uint64_t at) {
    const std::uint64_t record = at / request.partBytes;
    const std::uint64_t begin = at % request.partBytes;
    const std::uint64_t whole = request.spread + request.partBytes;
    std::uint64_t records = 1;
    // Several records at once, where little else lies between their parts.
    if ((m_recordBytes <= kSmallRecord || whole >= m_recordBytes / 2) && whole <= kPieceBytes) {
        const std::uint64_t lastRecord = (request.end - 1) / request.partBytes;
        records += std::min((kPieceBytes - whole) / m_recordBytes, lastRecord - record);
    }
    // In the first record the parts are wanted from `begin`, in the last one up to `lastEnd`.
    const std::uint64_t lastEnd = std::min(request.partBytes, request.end - (record + records - 1) * request.partBytes);
    const std::uint8_t* const piece = Read(m_piece, record * m_recordBytes + request.low + begin,
                                           (records - 1) * m_recordBytes + request.spread + lastEnd - begin);
    std::uint64_t position = at - request.first;
    if (request.partBytes == m_recordBytes) {
        // Nothing lies between the parts of the only stream, which may be asked for more than once.
        const std::uint64_t bytes = (records - 1) * m_recordBytes + lastEnd - begin;
        std::fill(m_streams.begin(), m_streams.end(), piece);
        request.visitor(position, m_streams, static_cast<std::size_t>(bytes));
        return bytes;
    }
    for (std::uint64_t row = 0; row < records; ++row) {
        const std::uint64_t from = row == 0 ? begin : 0;
        const std::uint64_t to = row + 1 == records ? lastEnd : request.partBytes;
        for (std::size_t stream = 0; stream < m_streams.size(); ++stream) {
            m_streams[stream] = piece + (row * m_recordBytes + request.offsets[stream] - request.low + from - begin);
        }
        request.visitor(position, m_streams, static_cast<std::size_t>(to - from));
        position += to - from;
    }
    return position - (at - request.first);
}

}  // namespace quillon
