#include "app/PathArgument.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(PathArgument, IsTheFirstOneInQuotationMarksOrElseTheWholeText) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"", u""},
        {u" \t ", u""},
        {u"\"\"", u""},
        {u"\"", u""},
        {u"\"C:\\My records\\a b.edf\"", u"C:\\My records\\a b.edf"},
        {u"  C:\\My records\\a b.edf \t", u"C:\\My records\\a b.edf"},
        {u"\"C:\\folder\\\"", u"C:\\folder\\"},
        {u"C:\\folder\\\"", u"C:\\folder\\"},
        {u"\"C:\\open end", u"C:\\open end"},
        {u"\"a.edf\" \"b.edf\" c.edf", u"a.edf"},
        {u"\"a.edf\"b.edf", u"a.edf"},
        {u"-a.edf", u"-a.edf"},
        {u"/home/a.edf", u"/home/a.edf"},
        {u"--help me", u"--help me"},
        {u"\\\\?\\C:\\a.edf", u"\\\\?\\C:\\a.edf"},
        {u"\"\\\\server\\share\\a.edf\"", u"\\\\server\\share\\a.edf"},
        {u"Запись 'ночь' & 100%.edf", u"Запись 'ночь' & 100%.edf"},
    };
    for (const auto& [text, path] : cases) EXPECT_EQ(PathArgument(text), path);
}

TEST(PathArgument, DevicesAreToldFromPlacesOnADisk) {
    for (const char16_t* device : {u"\\\\.\\COM1", u"\\\\.\\NUL", u"//./PhysicalDrive0", u"\\\\.\\"})
        EXPECT_TRUE(IsDevicePath(device));
    for (const char16_t* place :
         {u"", u"\\\\", u"\\\\?\\C:\\a", u"\\\\server\\.\\a", u".\\\\a", u"C:\\.\\a", u"\\.\\a"})
        EXPECT_FALSE(IsDevicePath(place));
}

}  // namespace
}  // namespace quillon
