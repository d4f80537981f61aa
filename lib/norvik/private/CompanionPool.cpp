#include "norvik/private/CompanionPool.h"

#include <algorithm>

namespace quillon {

namespace {

constexpr std::size_t kMostOpen = 16;

}  // namespace

class CompanionPool::File final : public ByteSource {
  public:
    File(std::shared_ptr<CompanionPool> pool, std::u16string name, const ByteSource& opened)
        : m_pool(std::move(pool)), m_name(std::move(name)), m_size(opened.Size()), m_modified(opened.ModifiedTime()) {
        SetErrorLanguage(opened.ErrorLanguage());
    }
    [[nodiscard]] std::uint64_t Size() const override { return m_size; }
    [[nodiscard]] double ModifiedTime() const override { return m_modified; }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        Bilingual error;
        const std::shared_ptr<ByteSource> source = m_pool->Find(m_name, error);
        if (!source) throw ReadError({m_name + u": " + error.english, m_name + u": " + error.russian}, ErrorLanguage());
        return source->ReadAt(offset, buffer, count);
    }

  private:
    std::shared_ptr<CompanionPool> m_pool;
    std::u16string m_name;
    std::uint64_t m_size;
    double m_modified;
};

std::shared_ptr<ByteSource> CompanionPool::Open(const std::u16string& name, Bilingual& error) {
    const std::shared_ptr<ByteSource> source = Find(name, error);
    return source ? std::make_shared<File>(shared_from_this(), name, *source) : nullptr;
}

std::shared_ptr<ByteSource> CompanionPool::Find(const std::u16string& name, Bilingual& error) {
    const auto known =
        std::find_if(m_opened.begin(), m_opened.end(), [&](const Opened& opened) { return opened.name == name; });
    if (known != m_opened.end()) {
        m_opened.splice(m_opened.begin(), m_opened, known);
    } else {
        std::shared_ptr<ByteSource> source = m_companions.Open(name, error);
        if (!source) return nullptr;
        m_opened.push_front({name, std::move(source)});
        if (m_opened.size() > kMostOpen) m_opened.pop_back();
    }
    return m_opened.front().source;
}

}  // namespace quillon
