#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"

#include <winspool.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace quillon {
namespace {

using ::testing::HasSubstr;
using namespace ::quillon::testing;

/// Enough of a PostScript printer for A4.
constexpr std::string_view kDescription = R"ppd(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "TEST.PPD"
*Product: "(Test)"
*PSVersion: "(3010.000) 0"
*ModelName: "Test"
*ShortNickName: "Test"
*NickName: "Test"
*LanguageLevel: "3"
*ColorDevice: True
*DefaultColorSpace: RGB
*DefaultResolution: 600dpi
*OpenUI *PageSize: PickOne
*DefaultPageSize: A4
*PageSize A4/A4: "<</PageSize [595 842]>> setpagedevice"
*CloseUI: *PageSize
*DefaultImageableArea: A4
*ImageableArea A4/A4: "12 12 583 830"
*DefaultPaperDimension: A4
*PaperDimension A4/A4: "595 842"
*DefaultFont: Courier
*Font Courier: Standard "(001.000)" Standard ROM
)ppd";

/// A printer that writes PostScript into a file; the user's default one as long as this lasts.
class PostScriptPrinter {
  public:
    explicit PostScriptPrinter(std::wstring file) : m_file(std::move(file)) {
        if (!AddDriver()) return;
        PRINTER_INFO_2W printer{};
        printer.pPrinterName = m_name;
        printer.pDriverName = m_name;
        printer.pPortName = m_file.data();
        printer.pPrintProcessor = m_processor;
        printer.pDatatype = m_type;
        m_printer = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
        if (m_printer != nullptr) SetDefaultPrinterW(m_name);
    }
    ~PostScriptPrinter() {
        if (m_printer == nullptr) return;
        DeletePrinter(m_printer);
        ClosePrinter(m_printer);
        SetDefaultPrinterW(L"");
    }
    PostScriptPrinter(const PostScriptPrinter&) = delete;
    PostScriptPrinter& operator=(const PostScriptPrinter&) = delete;
    [[nodiscard]] bool Exists() const { return m_printer != nullptr; }

  private:
    bool AddDriver() {
        wchar_t folder[MAX_PATH] = {};
        DWORD needed = 0;
        if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder), sizeof folder, &needed))
            return false;
        std::wstring description = std::wstring(folder) + L"\\test.ppd";
        std::ofstream(std::filesystem::path(description), std::ios::binary) << kDescription;
        DRIVER_INFO_3W driver{};
        driver.cVersion = 3;
        driver.pName = m_name;
        driver.pDriverPath = m_module;
        driver.pDataFile = description.data();
        driver.pConfigFile = m_module;
        driver.pDefaultDataType = m_type;
        return AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver),
                                   APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY) != FALSE;
    }

    std::wstring m_file;
    wchar_t m_name[16] = L"Quillon Test";
    wchar_t m_module[16] = L"wineps.drv";
    wchar_t m_processor[16] = L"WinPrint";
    wchar_t m_type[4] = L"RAW";
    HANDLE m_printer = nullptr;
};

class PrintTest : public MainWindowTest {};

TEST_F(PrintTest, APrinterGetsOnePageWithTheTracesAsLines) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    Start();
    const std::u16string page = m_folder.Path() + u"\\page.ps";
    const PostScriptPrinter printer(Wide(page));
    if (!printer.Exists()) GTEST_SKIP() << "no printer can be added here: error " << GetLastError();
    CommandPressing(mnuPrint, IDOK);
    EXPECT_THAT(Status(), HasSubstr(L"Printed: a.bin"));
    ASSERT_TRUE(WaitFor([&] { return Contents(page).find("%%EOF") != std::string::npos; }));
    const std::string text = Contents(page);
    EXPECT_THAT(text, HasSubstr("%!PS-Adobe"));
    EXPECT_GT(std::ranges::count(text, '\n'), 1000) << "the saw's corners";
    EXPECT_THAT(text, HasSubstr("%%Pages: 1"));
}

}  // namespace
}  // namespace quillon
