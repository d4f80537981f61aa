#include "app/win/PictureCommands.h"

#include <algorithm>
#include <optional>

#include "app/LookCommands.h"
#include "app/ShownTexts.h"
#include "app/StringIds.h"
#include "app/win/GraphPane.h"
#include "app/win/LongCommand.h"
#include "app/win/Printer.h"
#include "app/win/SpectrogramPane.h"
#include "base/FilePath.h"
#include "base/Text.h"
#include "export/PngWriter.h"
#include "norvik/OutputFile.h"
#include "view/win/cMemDC.h"

namespace quillon {

namespace {

constexpr std::int32_t kMetafileType = 4;  ///< in the dialog, behind the PNG types that are their scales
constexpr std::int32_t kDarkType = 5;      ///< a PNG in dark colours, as large as the first
constexpr int kVectorScale = 4;            ///< traces of a metafile have points at quarters of a pixel

/// The content of a window as it paints itself.
std::optional<ReportImage> ImageOf(HWND window) {
    RECT client{};
    if (window == nullptr || !GetClientRect(window, &client) || IsRectEmpty(&client)) return std::nullopt;
    cMemDC canvas;
    ReportImage image;
    image.width = static_cast<std::int32_t>(client.right);
    image.height = static_cast<std::int32_t>(client.bottom);
    const std::uint32_t* const pixels = canvas.CreatePixels(image.width, image.height);
    if (pixels == nullptr) return std::nullopt;
    canvas.Clear();
    SendMessageW(window, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(canvas.Handle()), PRF_CLIENT);
    GdiFlush();
    image.pixels.assign(pixels, pixels + static_cast<std::ptrdiff_t>(image.width) * image.height);
    for (std::uint32_t& pixel : image.pixels) pixel &= 0xFFFFFF;
    return image;
}

}  // namespace

void PictureCommands::Tell(int text, const std::u16string& what) const {
    m_shared.services.SetStatus(m_shared.services.Text(text) + (what.empty() ? what : u": " + what));
}

int PictureCommands::LargestScale() const {
    RECT client{};
    GetClientRect(m_parts.window.Window(), &client);
    // The picture is about as large as the window.
    const LONG side = std::max({client.right, client.bottom, LONG{1}});
    return static_cast<int>(std::clamp(LONG{kMostPngSide} / side, LONG{1}, LONG{kMetafileType - 1}));
}

std::vector<ReportImage> PictureCommands::SpectrogramImages(ViewReport& report) const {
    std::vector<ReportImage> images;
    if (!m_shared.settings.window.spectrogramShown) return images;
    auto picture = ImageOf(m_parts.spectrogram.Picture());
    auto scale = ImageOf(m_parts.spectrogram.Scale());
    auto colors = ImageOf(m_parts.spectrogram.Palette());
    if (!picture || !scale || !colors) return images;
    constexpr std::int32_t gap = 4;
    auto levels = ImageOf(m_parts.spectrogram.Levels());
    // Beside a light graph they are white on black.
    for (auto* image : {&scale, &levels}) {
        if (*image && report.Look().colors == &kLightColors)
            for (std::uint32_t& pixel : (*image)->pixels) pixel ^= 0xFFFFFF;
    }
    const std::int32_t figures = levels ? levels->width : 0;
    const std::int32_t top = report.Size().height;
    report.Reserve(
        {scale->width + gap, 0, colors->width + figures + 2 * gap, report.Margins().bottom + scale->height + gap});
    const std::int32_t left = report.Margins().left;
    const std::int32_t right = left + picture->width;
    scale->left = left - scale->width;
    picture->left = left;
    colors->left = right + gap;
    if (levels) levels->left = colors->left + colors->width;
    for (auto* image : {&scale, &picture, &colors, &levels}) {
        if (!*image) continue;
        (*image)->top = top;
        images.push_back(std::move(**image));
    }
    return images;
}

bool PictureCommands::WithReport(int scale, const GraphColors& colors, const Use& use) {
    bool drawn = false;
    onWork([&] {
        FormatOptions format = m_shared.format;
        if (!(Block().startTime > 0.0)) format.timeOfDay = false;
        const ReportPainter painter(scale, m_shared.density.Dpi());
        const ReportStyle style{m_shared.density.Dpi(), format,
                                [&](const std::u16string& text) { return painter.SizeOf(text); },
                                GraphLook{.colors = &colors}};
        const std::u16string shown = TextOfShown(m_shared.document, m_shared.language, format.decimalSeparator);
        const ReportLayout layout(style, MakeReportHeading(m_shared.document, m_shared.view.Axis().Visible(), shown,
                                                           format, m_shared.language));
        // Not while the report is drawn, which lets the window paint.
        std::optional<LookScope> look(std::in_place, m_shared.view, colors);
        ViewReport report(m_shared.document, m_shared.view, m_parts.graph.Scene(), layout, scale);
        const std::vector<ReportImage> images = SpectrogramImages(report);
        look.reset();
        drawn = report.DrawGraph([&] { return !onPending(); });
        if (drawn) use(report, painter, images);
    });
    return drawn;
}

void PictureCommands::Save() {
    const std::shared_ptr<RecordingBlock> block = Block().block;
    const std::u16string& recording = m_shared.document.File().fileName;
    SaveFileDialog& dialog = m_shared.saveDialog;
    const std::u16string name = BareNameOf(recording);
    dialog.title = m_shared.services.Text(IDS_PICTURE_TITLE);
    dialog.filter = m_shared.services.Text(IDS_PICTURE_TYPES);
    dialog.filterIndex = m_type;
    dialog.folder = m_folder.empty() || !FileExists(m_folder) ? FolderOf(recording) : m_folder;
    dialog.fileName = name;
    onDialog();
    // The dialog runs a message loop, in which the recording may have been closed.
    if (!dialog.Show() || m_parts.window.IsGone() || Block().block != block) return;
    m_type = dialog.filterIndex;
    const std::u16string chosen = dialog.fileName;
    m_folder = FolderOf(chosen);
    if (onPictures()) Write(chosen, m_type);
}

void PictureCommands::Write(const std::u16string& name, std::int32_t type) {
    const bool vector = type == kMetafileType;
    const bool dark = type == kDarkType;
    const int scale = vector ? kVectorScale : std::clamp(dark ? 1 : static_cast<int>(type), 1, LargestScale());
    const std::u16string recording = FileNameOf(m_shared.document.File().fileName);
    std::vector<std::byte> bytes;
    TextSize size{};
    const bool drawn = WithReport(
        scale, dark ? kDarkColors : kLightColors,
        [&](const ViewReport& report, const ReportPainter& painter, const auto& images) {
            size = report.Size();
            if (vector) {
                const Metafile file = painter.Record(report, images, recording);
                if (!file) return;
                bytes.resize(GetEnhMetaFileBits(file.Get(), 0, nullptr));
                GetEnhMetaFileBits(file.Get(), static_cast<UINT>(bytes.size()), reinterpret_cast<BYTE*>(bytes.data()));
                return;
            }
            size = {size.width * scale, size.height * scale};
            const std::vector<std::uint32_t> pixels = painter.Pixels(report, images);
            if (!pixels.empty()) bytes = PngBytes({pixels, size.width, size.height, m_shared.density.Dpi() * scale});
        });
    if (m_parts.window.IsGone()) return;
    if (!drawn) return Tell(IDS_STOPPED_FILE, name);
    if (bytes.empty()) return Tell(IDS_PICTURE_FAILED);
    WriteFile(name, bytes, size);
}

void PictureCommands::WriteFile(const std::u16string& name, std::span<const std::byte> bytes, TextSize size) {
    const std::unique_ptr<OutputFile> file = MakeOutputFile();
    if (!file->Create(name) || !file->Write(bytes) || !file->Close())
        return Tell(IDS_CANNOT_WRITE, file->ErrorText().In(m_shared.language));
    Tell(IDS_WRITTEN, name + u" (" + Decimal(size.width) + u" \u00D7 " + Decimal(size.height) + u')');
}

void PictureCommands::Print() {
    const std::shared_ptr<RecordingBlock> block = Block().block;
    onDialog();
    PrinterDC printer;
    const PrinterChoice choice = AskForPrinter(m_parts.window.Window(), printer);
    if (m_parts.window.IsGone()) return;
    if (choice == PrinterChoice::None) return Tell(IDS_NO_PRINTER);
    if (choice == PrinterChoice::Chosen && Block().block == block && onPictures()) PrintOn(printer.Get());
}

void PictureCommands::PrintOn(HDC printer) {
    const std::u16string recording = FileNameOf(m_shared.document.File().fileName);
    bool done = false;
    const bool drawn = WithReport(kVectorScale, kLightColors,
                                  [&](const ViewReport& report, const ReportPainter& painter, const auto& images) {
                                      const Metafile picture = painter.Record(report, images, recording);
                                      done = picture && PrintPicture(printer, picture.Get(), recording);
                                  });
    if (m_parts.window.IsGone()) return;
    Tell(!drawn ? IDS_NOT_PRINTED : done ? IDS_PRINTED : IDS_PRINT_FAILED, recording);
}

}  // namespace quillon
