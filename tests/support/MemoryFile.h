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
        if (m_failures > 0 || m_bytes.size() + bytes.size() > m_room) return ++m_failures, false;
        m_bytes.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return true;
    }
    bool Close() override { return true; }
    std::u16string ErrorText() const override { return u"write-protected"; }
    std::size_t FailureCount() const override { return m_failures; }

  private:
    std::string& m_bytes;
    std::size_t m_room;
    std::size_t m_failures = 0;
};

}  // namespace quillon::testing
