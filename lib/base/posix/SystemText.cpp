#include "base/SystemText.h"

namespace quillon {

Bilingual SystemText(std::int64_t number) {
    return ErrnoText(static_cast<int>(number));
}

}  // namespace quillon
