#include "app/SpectrumReadout.h"

#include <gmock/gmock.h>
#include <array>

#include <numbers>

#include "base/Text.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class SpectrumReadoutTest : public ViewFixture {
  protected:
    /// A tone of a quarter of the rate and nine tenths of the range, in the middle of zeros.
    SpectrumReadoutTest() {
        auto block = std::make_shared<FakeBlock>();
        block->samples.resize(1, std::vector<std::int16_t>(3000));
        for (std::size_t at = 1000; at < 2000; ++at)
            block->samples[0][at] =
                static_cast<std::int16_t>(900 * std::sin(static_cast<double>(at) * std::numbers::pi / 2));
        m_block = block;
        Load(block);
        m_fft.FFT_Init(500);
    }
    std::string Told(std::int32_t sample, std::int32_t row, std::int32_t height = 129) {
        m_fft.FFT_Update(m_axis.FirstColumn(), m_axis.Width(), m_axis.SamplesPerPixel(), true);
        return Utf8(SpectrumReadout({m_fft, m_document.Block(), m_axis, m_format, m_settings}, sample, row, height));
    }

    std::shared_ptr<FakeBlock> m_block;
    SpectrumSettings m_settings;
    QL_FFT m_fft{m_settings};
    FormatOptions m_format{false};
};

TEST_F(SpectrumReadoutTest, TellsTheBinUnderARowOfAPictureOfAnyHeight) {
    EXPECT_EQ(Told(1, 0), "") << "no channel yet";
    m_fft.FFT_SetChannel(m_block.get(), 0, 0, {-500.0F, 500.0F});
    m_view.ScrollBy(1300);
    EXPECT_EQ(Told(1501, 64), "X:\t15 s\r\nF:\t25 Hz\r\nL:\t-0.9 dB\r\n");
    for (const std::int32_t height : {129, 300, 1000}) {
        // The rows of the bin of 25 Hz, which is the 65th of 129 from below.
        const std::int32_t row = height - 1 - (64 * height + height / 2) / 129;
        EXPECT_THAT(Told(1501, row, height), HasSubstr("F:\t25 Hz\r\nL:\t-0.9 dB")) << height;
        EXPECT_THAT(Told(1501, height - 1, height), HasSubstr("F:\t0 /min")) << height;
        EXPECT_THAT(Told(1501, -5, height), HasSubstr("F:\t50 Hz")) << "above it";
    }
    EXPECT_EQ(Told(1501, 0, 0), "") << "a picture without rows";
    m_settings.type = 1;
    m_fft.FFT_ComputeScaling();
    EXPECT_THAT(Told(1501, 64), EndsWith("L:\t\u2265 100 %\r\n")) << "108 % is more than the scale has";
}

TEST_F(SpectrumReadoutTest, TellsNoLevelThatIsNotInTheImage) {
    m_fft.FFT_SetChannel(m_block.get(), 0, 0, {-500.0F, 500.0F});
    EXPECT_THAT(Told(300, 64), EndsWith("L:\t\u2264 -120 dB\r\n"));
    EXPECT_THAT(Told(600, 64), EndsWith("F:\t25 Hz\r\nL:\t\r\n")) << "right of the picture";
    m_block->holeFrom = 290;
    m_block->holeTo = 300;
    EXPECT_THAT(Told(300, 64), EndsWith("L:\t\r\n"));
    EXPECT_THAT(Told(100, 64), EndsWith(" dB\r\n"));
}

TEST_F(SpectrumReadoutTest, AChannelThatCannotBeReadGetsARangeToTryItAgain) {
    const std::array<std::int16_t, 1> channel{1};
    const auto range = [&] {
        static_cast<void>(m_view.Ranges().Of(m_document.Block(), channel));
        return SpectrumRange(m_view.Ranges(), 1);
    };
    m_block->holeTo = 3000;
    EXPECT_LT(range().minimum, range().maximum);
    m_block->holeTo = 0;
    EXPECT_EQ(range().maximum, 451.0F);
}

}  // namespace
}  // namespace quillon
