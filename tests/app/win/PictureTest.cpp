#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"
#include "support/PngReader.h"
#include "view/win/ReportPainter.h"
#include "view/win/cMemDC.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using namespace ::quillon::testing;

class PictureTest : public MainWindowTest {
  protected:
    [[nodiscard]] std::u16string Path(const std::u16string& name) const { return m_folder.Path() + u"\\" + name; }
    void Save(const std::u16string& name, std::int32_t type) {
        m_saveDialog->answer = [=, this](SaveFileDialog& shown) {
            m_filter = shown.filter;
            return shown.fileName = name, shown.filterIndex = type, true;
        };
        Command(mnuSavePicture);
    }
    [[nodiscard]] ReadPicture Saved(const std::u16string& name, std::int32_t type) {
        Save(Path(name), type);
        EXPECT_THAT(Status(), HasSubstr(L"Written: " + Wide(Path(name))));
        return PngReader::Read(Contents(Path(name)));
    }
    /// What "Status" says of the size.
    [[nodiscard]] TextSize SizeTold() const {
        TextSize size;
        const std::wstring told = Status();
        std::swscanf(told.c_str() + told.rfind(L'('), L"(%d \u00D7 %d)", &size.width, &size.height);
        return size;
    }
    std::u16string m_filter;
};

/// The place of the window's graph in a picture; negative where it is not.
POINT PlaceOf(const Pixels& graph, const ReadPicture& picture) {
    const auto isAt = [&](std::int32_t left, std::int32_t top) {
        for (std::int32_t at = 0; at < graph.width * graph.height; ++at) {
            const std::int32_t x = at % graph.width;
            const std::int32_t y = at / graph.width;
            if (picture.At(left + x, top + y) != graph.At(x, y)) return false;
        }
        return true;
    };
    for (std::int32_t top = 0; top + graph.height <= picture.height; ++top) {
        for (std::int32_t left = 0; left + graph.width <= picture.width; ++left) {
            if (isAt(left, top)) return {left, top};
        }
    }
    return {-1, -1};
}

/// What a metafile consists of.
struct Parts {
    std::vector<std::wstring> texts;
    int lines = 0;
    int bitmaps = 0;
};

Parts PartsOf(HENHMETAFILE file) {
    Parts parts;
    const auto take = [](HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM to) -> int {
        Parts& found = *reinterpret_cast<Parts*>(to);
        if (record->iType == EMR_POLYLINE || record->iType == EMR_POLYLINE16) ++found.lines;
        if (record->iType == EMR_STRETCHDIBITS) ++found.bitmaps;
        if (record->iType != EMR_EXTTEXTOUTW) return 1;
        const auto& text = reinterpret_cast<const EMREXTTEXTOUTW*>(record)->emrtext;
        const auto* const letters = reinterpret_cast<const char*>(record) + text.offString;
        std::wstring copy(text.nChars, L' ');
        std::memcpy(copy.data(), letters, text.nChars * sizeof(wchar_t));
        found.texts.push_back(copy);
        return 1;
    };
    EnumEnhMetaFile(nullptr, file, take, &parts, nullptr);
    return parts;
}

/// A metafile played to a size.
ReadPicture Played(HENHMETAFILE file, std::int32_t width, std::int32_t height) {
    cMemDC canvas;
    const std::uint32_t* const pixels = canvas.CreatePixels(width, height);
    const RECT place{0, 0, width, height};
    PlayEnhMetaFile(canvas.Handle(), file, &place);
    GdiFlush();
    ReadPicture played{.width = width, .height = height, .perMetre = 0, .pixels = {}};
    played.pixels.assign(pixels, pixels + std::ptrdiff_t{width} * height);
    for (std::uint32_t& pixel : played.pixels) pixel &= 0xFFFFFF;
    return played;
}

/// The first and last row of the first channel's trace in a column; rows count from `top`.
std::pair<std::int32_t, std::int32_t> RowsOf(const ReadPicture& picture, std::int32_t x, std::int32_t top,
                                             std::int32_t height) {
    std::pair<std::int32_t, std::int32_t> rows{height, -1};
    for (std::int32_t y = 0; y < height; ++y) {
        if (picture.At(x, top + y) != TraceColor(0)) continue;
        rows.first = std::min(rows.first, y);
        rows.second = y;
    }
    return rows;
}

/// The corner of the graph's border.
POINT CornerOf(const ReadPicture& picture) {
    const auto isBorder = [&](std::int32_t x, std::int32_t y) { return picture.At(x, y) == 0x8C939C; };
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x + 50 < picture.width; ++x) {
            if (isBorder(x, y) && isBorder(x + 50, y)) return {x, y};
        }
    }
    return {-1, -1};
}

TEST_F(PictureTest, FilesHoldTheViewAsItStands) {
    m_folder.Write(u"saw.bin", SawRecording());
    Start();
    for (const bool lanes : {false, true}) {
        if (lanes) Command(mnuLanes);
        const ReadPicture once = Saved(u"one.png", 1);
        // Not before: the pointer may have been over the graph.
        const Pixels graph = Capture(pbGraph);
        const POINT at = PlaceOf(graph, once);
        ASSERT_GT(at.y, 10) << "a heading, the graph below it";
        ASSERT_GT(at.x, 10);
        EXPECT_LT(at.y + graph.height + 10, once.height) << "times";
        for (const std::int32_t scale : {2, 3}) {
            const ReadPicture large = Saved(u"large.png", scale);
            EXPECT_NEAR(large.width, once.width * scale, 16 * scale);
            EXPECT_NEAR(large.perMetre, once.perMetre * static_cast<std::uint32_t>(scale), 2);
        }
        Save(Path(u"view.emf"), 4);
        EXPECT_THAT(Status(), HasSubstr(L"view.emf ("));
        const Metafile file(GetEnhMetaFileW(Wide(Path(u"view.emf")).c_str()));
        ASSERT_TRUE(file);
        const Parts parts = PartsOf(file.Get());
        EXPECT_THAT(parts.texts, Contains(L"saw.bin"));
        EXPECT_GT(parts.texts.size(), 8U) << "titles, times and scales";
        EXPECT_GE(parts.lines, 2);
        EXPECT_EQ(parts.bitmaps, 0);
        // Both are drawn by different means. Texts of another size may have moved the graph by some pixels.
        const TextSize size = SizeTold();
        const ReadPicture played = Played(file.Get(), size.width, size.height);
        const POINT corner = CornerOf(played);
        ASSERT_NEAR(corner.x, at.x, 4);
        int drawn = 0;
        for (std::int32_t x = 2; x < graph.width - 2; x += 3) {
            const auto pixels = RowsOf(once, at.x + x, at.y, graph.height);
            const auto lines = RowsOf(played, corner.x + 1 + x, corner.y + 1, graph.height);
            // A jump of the saw may begin a column aside.
            drawn += std::abs(pixels.first - lines.first) <= 2 || std::abs(pixels.second - lines.second) <= 2 ? 1 : 0;
        }
        EXPECT_GT(drawn, graph.width / 3 * 9 / 10);
    }
}

TEST_F(PictureTest, TheSpectrogramStandsBelowAndRefusalsAreTold) {
    m_folder.Write(u"saw.bin", SawRecording());
    Start();
    Command(mnuSpectrogram);
    const ReadPicture picture = Saved(u"both.png", 1);
    const POINT graph = PlaceOf(Capture(pbGraph), picture);
    const POINT image = PlaceOf(Capture(pbFFT), picture);
    EXPECT_EQ(graph.x, image.x) << "column for column";
    EXPECT_GT(image.y, graph.y + Capture(pbGraph).height);
    EXPECT_GT(PlaceOf(Capture(pbPal), picture).x, image.x + Capture(pbFFT).width);
    Save(Path(u"none\\x.png"), 1);
    EXPECT_THAT(Status(), HasSubstr(L"The file cannot be written: "));
    EXPECT_EQ(std::count(m_filter.begin(), m_filter.end(), u'|'), 9) << "five types";
    // What was chosen last is offered first.
    Save(Path(u"a.emf"), 4);
    std::int32_t offered = 0;
    m_saveDialog->answer = [&](SaveFileDialog& shown) { return offered = shown.filterIndex, false; };
    Command(mnuSavePicture);
    EXPECT_EQ(offered, 4);
}

}  // namespace
}  // namespace quillon
