#pragma once

#include <cstddef>
#include <string>

#include "norvik/OutputFile.h"

namespace quillon::testing {

/// A file in memory. It takes `room` bytes and refuses the rest, and cannot be made under the name "no.bin".
class MemoryFile final : public OutputFile {
  public:
    MemoryFile(std::string& bytes, std::size_t room) : m_bytes(bytes), m_room(room) {}
    bool Create(const std::u16string& fileName) override { return m_bytes.clear(), fileName != u"no.bin"; }
    bool Write(std::span<const std::byte> bytes) override {
        if (m_failed || m_bytes.size() + bytes.size() > m_room) return m_failed = true, false;
        m_bytes.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return true;
    }
    bool Close() override { return !m_failed; }
    Bilingual ErrorText() const override {
        return m_failed ? Bilingual{u"full", u"полон"} : Bilingual{u"write-protected", u"защищён"};
    }

  private:
    std::string& m_bytes;
    std::size_t m_room;
    bool m_failed = false;
};

}  // namespace quillon::testing
