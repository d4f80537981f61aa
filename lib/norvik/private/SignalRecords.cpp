#include "norvik/private/SignalRecords.h"

#include <cmath>

#include "base/Text.h"
#include "norvik/private/EdfHeader.h"
#include "norvik/private/Refusals.h"

namespace quillon {

std::optional<LinearUnits> UnitsOfLimits(double physicalMinimum, double physicalMaximum, double digitalMinimum,
                                         double digitalMaximum) {
    if (digitalMaximum == digitalMinimum) return std::nullopt;
    const double scale = (physicalMaximum - physicalMinimum) / (digitalMaximum - digitalMinimum);
    const double offset = physicalMinimum - scale * digitalMinimum;
    // The block keeps both in single precision, where they may become zero or infinite.
    const bool usable = std::isfinite(static_cast<float>(scale)) && std::isfinite(static_cast<float>(offset)) &&
                        static_cast<float>(scale) != 0.0F;
    if (!usable) return std::nullopt;
    return LinearUnits{scale, offset};
}

void UselessLimits::Add(const std::u16string& label, std::uint64_t place) {
    if (m_signals++ > 0) return;
    m_first = label;
    m_place = place;
}

Bilingual UselessLimits::Remark() const {
    if (m_signals == 0) return {};
    return Say(u"no usable limits in %1 of the signals, first in '%2' at byte %3: shown as stored",
               u"негодные пределы у сигналов: %1, первый «%2», байт %3: показаны хранимые числа",
               {Number(m_signals), m_first, Number(m_place)});
}

RecordCount CountRecords(std::uint64_t fileSize, std::uint64_t dataStart, std::uint64_t recordBytes,
                         const StatedCount& stated) {
    const std::uint64_t whole = (fileSize - dataStart) / recordBytes;
    if (whole == 0) {
        throw FormatError(
            Say(u"no whole record: the first one takes bytes %1 to %2, the file ends at byte %3",
                u"нет ни одной целой записи: первая занимает байты с %1 по %2, файл кончается на байте %3",
                {Number(dataStart), Number(dataStart + recordBytes), Number(fileSize)}));
    }
    if (!stated.count || *stated.count < 1) {
        return {whole, false,
                Say(u"record count '%1' at byte %2: counted from the file's size",
                    u"число записей «%1», байт %2: посчитано по размеру файла", {stated.shown, Number(stated.place)})};
    }
    if (static_cast<std::uint64_t>(*stated.count) > whole) {
        return {whole, false,
                Say(u"cut short: %1 of %2 records", u"файл обрезан: записей %1 из %2",
                    {Number(whole), Decimal(*stated.count)})};
    }
    return {static_cast<std::uint64_t>(*stated.count), true, {}};
}

Bilingual RemarkOnRest(std::uint64_t bytes) {
    return Say(u"%1 bytes after the last record", u"после последней записи ещё байт: %1", {Number(bytes)});
}

Bilingual DescribeRecords(const std::u16string& format, std::size_t signals, std::uint64_t records,
                          double recordSeconds) {
    Bilingual info =
        Say(signals == 1 ? u"%1, %2 signal" : u"%1, %2 signals", u"%1, сигналов: %2", {format, Number(signals)});
    const Bilingual counts = Say(records == 1 ? u", %1 record of %2 s" : u", %1 records of %2 s",
                                 u", записей: %1 по %2 с", {Number(records), PlainNumber(recordSeconds)});
    info.english += counts.english;
    info.russian += counts.russian;
    return info;
}

}  // namespace quillon
