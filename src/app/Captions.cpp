#include "app/Captions.h"

#include <algorithm>

#include "base/FilePath.h"
#include "view/Readout.h"

namespace quillon {

std::u16string EscapedCaption(std::u16string_view name) {
    std::u16string text;
    for (const char16_t letter : name) text.append(letter == u'&' ? 2 : 1, letter);
    return text;
}

std::u16string WindowCaption(const std::u16string& file, const std::u16string& blockLine) {
    if (file.empty()) return u"Quillon";
    // Behind the tab stands the number of the block.
    const std::u16string block = blockLine.substr(0, blockLine.find(u'\t'));
    return FileNameOf(file) + (block.empty() ? u"" : u" - [" + block + u"]");
}

std::u16string ImageCaption(const std::u16string& windowCaption, const std::u16string& shown, const ViewBlock& block,
                            const TimeAxis& axis, const FormatOptions& format, const UserServices& services) {
    const auto place = [&](std::int32_t column) {
        return PositionText(block, SampleUnder(axis, column), u" ", format);
    };
    return windowCaption + (shown.empty() ? u"" : u"    " + shown) + u"    " + place(0) + u" \u2013 " +
           place(std::max(axis.Width() - 1, 0)) + u"    " + services.DateAndTime(block.startTime);
}

}  // namespace quillon
