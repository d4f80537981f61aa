#include "export/ExportOutcome.h"

#include <array>
#include <charconv>
#include <cmath>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "data/CoreTexts.h"

namespace quillon {

namespace {

/// Seven digits, which tell rates apart that are not the same.
std::u16string RateText(double rate) {
    std::array<char, 32> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), rate, std::chars_format::scientific, 6).ptr;
    std::from_chars(digits.data(), end, rate);
    return ShortestDecimal(rate);
}

}  // namespace

bool IsSameRate(double one, double other) {
    return std::abs(one - other) <= 1e-6 * std::abs(one);
}

std::u16string DescribeLoss(const ExportOutcome& outcome, Language language) {
    std::u16string text;
    const auto add = [&](bool wanted, const Bilingual& part) {
        if (wanted) text += (text.empty() ? u"" : u", ") + part.In(language);
    };
    add(outcome.written < outcome.asked,
        Say(u"%1 of %2 samples (whole records)", u"отсчётов %1 из %2 (целые записи данных)",
            {Decimal(outcome.written), Decimal(outcome.asked)}));
    add(outcome.filled > 0, Say(outcome.filled == 1 ? u"the last record is filled with %1 more sample"
                                                    : u"the last record is filled with %1 more samples",
                                u"последняя запись данных дополнена, лишних отсчётов: %1", {Decimal(outcome.filled)}));
    add(!IsSameRate(outcome.rate, outcome.ratedAs),
        Say(u"%1 Hz instead of %2 Hz", u"%1 Гц вместо %2 Гц", {RateText(outcome.ratedAs), RateText(outcome.rate)}));
    add(outcome.earlier, Say(u"starts at the block's start", u"время начала — от начала блока"));
    add(outcome.otherDate, Say(u"the format has no such date and says 1 January 1985",
                               u"такой даты в формате нет, указано 1 января 1985 года"));
    return text;
}

std::u16string StoppedText(const UserServices& services, std::int64_t written, std::int64_t asked,
                           const std::u16string& first, const std::u16string& last) {
    std::u16string text = FillPlaces(services.Text(IDS_STOPPED_FILES), {Decimal(written), Decimal(asked)});
    if (written > 0) text += u": " + first;
    if (written > 1) text += u" ... " + last;
    return text;
}

}  // namespace quillon
