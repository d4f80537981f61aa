#include "base/SystemText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

#include "base/Text.h"

namespace quillon {

namespace {

/// The errors of files, folders, devices, pipes and network drives.
constexpr std::array kRussian = std::to_array<std::pair<int, std::u16string_view>>({
    {EPERM, u"Операция не разрешена"},
    {ENOENT, u"Нет такого файла или папки"},
    {EINTR, u"Вызов прерван"},
    {EIO, u"Ошибка ввода-вывода"},
    {ENXIO, u"Нет такого устройства или адреса"},
    {EBADF, u"Файл закрыт или открыт не для этого"},
    {EAGAIN, u"Ресурс временно недоступен"},
    {ENOMEM, u"Не хватает памяти"},
    {EACCES, u"Отказано в доступе"},
    {EBUSY, u"Устройство или файл занят"},
    {EEXIST, u"Файл уже есть"},
    {EXDEV, u"Файлы лежат на разных дисках"},
    {ENODEV, u"Нет такого устройства"},
    {ENOTDIR, u"Это не папка"},
    {EISDIR, u"Это папка"},
    {EINVAL, u"Недопустимый аргумент"},
    {ENFILE, u"В системе открыто слишком много файлов"},
    {EMFILE, u"Открыто слишком много файлов"},
    {ETXTBSY, u"Файл исполняется"},
    {EFBIG, u"Файл слишком велик"},
    {ENOSPC, u"На диске нет места"},
    {ESPIPE, u"Недопустимый переход по файлу"},
    {EROFS, u"Диск доступен только для чтения"},
    {EMLINK, u"Слишком много ссылок"},
    {EPIPE, u"Канал закрыт с другой стороны"},
    {ENAMETOOLONG, u"Имя файла слишком длинное"},
    {ELOOP, u"Ссылки ведут по кругу"},
    {EOVERFLOW, u"Значение слишком велико для своего типа"},
    {ENOTEMPTY, u"Папка не пуста"},
    {EILSEQ, u"Недопустимые знаки"},
    {ENOSYS, u"Функция не реализована"},
    {ENOTSUP, u"Операция не поддерживается"},
    {ECONNRESET, u"Соединение разорвано другой стороной"},
    {ECONNREFUSED, u"В соединении отказано"},
    {ENOTCONN, u"Нет соединения"},
    {ENETUNREACH, u"Сеть недоступна"},
    {EHOSTUNREACH, u"Нет пути к серверу"},
    {ETIMEDOUT, u"Время ожидания соединения истекло"},
#ifdef EDQUOT
    {EDQUOT, u"Превышена дисковая квота"},
#endif
#ifdef ESTALE
    {ESTALE, u"Файл на сервере больше не доступен"},
#endif
});

}  // namespace

Bilingual ErrnoText(int number) {
    const auto* const found =
        std::find_if(kRussian.begin(), kRussian.end(), [&](const auto& entry) { return entry.first == number; });
    // The program sets no locale, so that the C library speaks English.
    return {Utf16(std::generic_category().message(number)),
            found != kRussian.end() ? std::u16string(found->second) : u"ошибка системы " + Decimal(number)};
}

Bilingual SystemText(const std::error_code& error) {
    return error.category() == std::generic_category() ? ErrnoText(error.value()) : SystemText(error.value());
}

std::u16string WordsOf(const std::exception& error, Language language) {
    const auto* const ofSystem = dynamic_cast<const std::system_error*>(&error);
    std::string words = error.what();
    if (ofSystem == nullptr) return Utf16(words);
    const std::string reason = ofSystem->code().message();
    if (words.ends_with(reason)) words.erase(words.size() - reason.size());
    return Utf16(words) + SystemText(ofSystem->code()).In(language);
}

}  // namespace quillon
