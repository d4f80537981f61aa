#include <gtest/gtest.h>

#include "base/win/Win32.h"
#include "export/PngWriter.h"
#include "support/PngCases.h"
// The identifiers of the interfaces are defined here.
#include <initguid.h>
#include <objbase.h>
#include <wincodec.h>

namespace quillon {
namespace {

template <typename Interface>
class ComPointer {
  public:
    ComPointer() = default;
    ~ComPointer() {
        if (m_object != nullptr) m_object->Release();
    }
    ComPointer(const ComPointer&) = delete;
    ComPointer& operator=(const ComPointer&) = delete;
    Interface** Out() { return &m_object; }
    Interface* operator->() const { return m_object; }
    [[nodiscard]] Interface* Get() const { return m_object; }

  private:
    Interface* m_object = nullptr;
};

/// The pixels of a file as the system's decoder gives them.
class SystemPicture {
  public:
    explicit SystemPicture(std::vector<std::byte> file) : m_file(std::move(file)) {
        ComPointer<IWICImagingFactory> factory;
        Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                               reinterpret_cast<void**>(factory.Out())));
        ComPointer<IWICStream> stream;
        Check(factory->CreateStream(stream.Out()));
        Check(stream->InitializeFromMemory(reinterpret_cast<BYTE*>(m_file.data()), static_cast<DWORD>(m_file.size())));
        ComPointer<IWICBitmapDecoder> decoder;
        Check(factory->CreateDecoderFromStream(stream.Get(), nullptr, WICDecodeMetadataCacheOnLoad, decoder.Out()));
        ComPointer<IWICBitmapFrameDecode> frame;
        Check(decoder->GetFrame(0, frame.Out()));
        Check(frame->GetSize(&width, &height));
        Check(frame->GetResolution(&dpi, &dpi));
        ComPointer<IWICFormatConverter> converter;
        Check(factory->CreateFormatConverter(converter.Out()));
        Check(converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                    WICBitmapPaletteTypeCustom));
        pixels.resize(std::size_t{width} * height);
        Check(converter->CopyPixels(nullptr, width * 4, static_cast<UINT>(pixels.size() * 4),
                                    reinterpret_cast<BYTE*>(pixels.data())));
    }
    UINT width = 0;
    UINT height = 0;
    double dpi = 0.0;
    std::vector<std::uint32_t> pixels;  ///< 0xAARRGGBB

  private:
    static void Check(HRESULT result) {
        if (FAILED(result)) throw std::runtime_error("the system answers " + std::to_string(result));
    }
    std::vector<std::byte> m_file;
};

TEST(PngFile, TheSystemReadsEveryPixel) {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    for (const testing::PngCase& one : testing::PngCases()) {
        const SystemPicture read(PngBytes(one.Picture(192)));
        ASSERT_EQ(read.width, static_cast<UINT>(one.width)) << one.name;
        ASSERT_EQ(read.height, static_cast<UINT>(one.height)) << one.name;
        EXPECT_NEAR(read.dpi, 192.0, 0.02) << one.name;
        for (std::size_t at = 0; at < one.pixels.size(); ++at)
            ASSERT_EQ(read.pixels[at], one.pixels[at] | 0xFF000000U) << one.name << ", pixel " << at;
    }
    CoUninitialize();
}

}  // namespace
}  // namespace quillon
