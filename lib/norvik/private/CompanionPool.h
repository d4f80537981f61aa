#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "norvik/private/Companions.h"

namespace quillon {

/// Opens the files beside a recording of any number of files, of which only those that were read last stay open.
class CompanionPool : public std::enable_shared_from_this<CompanionPool> {
  public:
    explicit CompanionPool(Companions companions) : m_companions(std::move(companions)) {}

    /// Null, with the reason in `error`, where the file cannot be opened. It is opened again when it is read after
    /// others, so that a read fails where it is gone by then.
    [[nodiscard]] std::shared_ptr<ByteSource> Open(const std::u16string& name, Bilingual& error);

  private:
    class File;
    struct Opened {
        std::u16string name;
        std::shared_ptr<ByteSource> source;
    };
    /// The open file of that name.
    std::shared_ptr<ByteSource> Find(const std::u16string& name, Bilingual& error);

    Companions m_companions;
    std::list<Opened> m_opened;  ///< the one that was used last first
};

}  // namespace quillon
