// Picture objects of picture files, whole and damaged.

#include "player/CoverPicture.h"
#include "support/PictureBytes.h"
#include "support/RandomDamage.h"

#include <gtest/gtest.h>
#include <wincodec.h>

namespace corvina::test {
namespace {

class CoverPicture : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(::CoInitialize(nullptr))); }
    void TearDown() override { ::CoUninitialize(); }

    static HBITMAP bitmapOf(const ComPtr<IPictureDisp>& picture) {
        OLE_HANDLE handle = 0;
        EXPECT_EQ(S_OK, picture.query<IPicture>()->get_Handle(&handle));
        return reinterpret_cast<HBITMAP>(static_cast<LONG_PTR>(static_cast<LONG>(handle)));
    }
    static SIZE sizeOf(const ComPtr<IPictureDisp>& picture) {
        if (!picture)
            return {};
        BITMAP bitmap{};
        ::GetObjectW(bitmapOf(picture), sizeof bitmap, &bitmap);
        return {bitmap.bmWidth, bitmap.bmHeight};
    }
    static COLORREF pixel(const ComPtr<IPictureDisp>& picture, int x, int y) {
        const HDC dc = ::CreateCompatibleDC(nullptr);
        const HGDIOBJ former = ::SelectObject(dc, bitmapOf(picture));
        const COLORREF color = ::GetPixel(dc, x, y);
        ::SelectObject(dc, former);
        ::DeleteDC(dc);
        return color;
    }

    // Pixels of blue, green, red and how opaque they are, as a file of that kind.
    static Bytes encoded(REFGUID kind, UINT width, UINT height, Bytes pixels) {
        ComPtr<IWICImagingFactory> factory;
        ComPtr<IWICBitmapEncoder> encoder;
        ComPtr<IWICBitmapFrameEncode> frame;
        ComPtr<IStream> stream;
        ComPtr<IWICBitmap> bitmap;
        EXPECT_EQ(S_OK, ::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                           IID_IWICImagingFactory, factory.putVoid()));
        EXPECT_EQ(S_OK, ::CreateStreamOnHGlobal(nullptr, TRUE, stream.put()));
        EXPECT_EQ(S_OK, factory->CreateEncoder(kind, nullptr, encoder.put()));
        EXPECT_EQ(S_OK, encoder->Initialize(stream.get(), WICBitmapEncoderNoCache));
        EXPECT_EQ(S_OK, encoder->CreateNewFrame(frame.put(), nullptr));
        EXPECT_EQ(S_OK, frame->Initialize(nullptr));
        EXPECT_EQ(S_OK, frame->SetSize(width, height));
        EXPECT_EQ(S_OK, factory->CreateBitmapFromMemory(width, height, GUID_WICPixelFormat32bppBGRA,
                                                        width * 4, static_cast<UINT>(pixels.size()),
                                                        pixels.data(), bitmap.put()));
        EXPECT_EQ(S_OK, frame->WriteSource(bitmap.get(), nullptr));
        EXPECT_EQ(S_OK, frame->Commit());
        EXPECT_EQ(S_OK, encoder->Commit());
        HGLOBAL memory = nullptr;
        EXPECT_EQ(S_OK, ::GetHGlobalFromStream(stream.get(), &memory));
        STATSTG status{};
        stream->Stat(&status, STATFLAG_NONAME);
        const auto* const bytes = static_cast<const std::uint8_t*>(::GlobalLock(memory));
        Bytes result(bytes, bytes + status.cbSize.QuadPart);
        ::GlobalUnlock(memory);
        return result;
    }
};

TEST_F(CoverPicture, shows_what_the_file_holds) {
    const ComPtr<IPictureDisp> picture = makePicture(bmp(5, 4, 0x102030));
    ASSERT_TRUE(picture);
    EXPECT_EQ(sizeOf(picture).cx, 5);
    EXPECT_EQ(sizeOf(picture).cy, 4);
    EXPECT_EQ(pixel(picture, 4, 3), RGB(0x10, 0x20, 0x30));
}

TEST_F(CoverPicture, of_png_and_jpeg_is_made_and_transparent_places_become_white) {
    Bytes pixels;
    for (int index = 0; index < 64; ++index)
        pixels.insert(pixels.end(), {0, 0, 200, static_cast<std::uint8_t>(index < 32 ? 255 : 0)});
    const ComPtr<IPictureDisp> png = makePicture(encoded(GUID_ContainerFormatPng, 8, 8, pixels));
    ASSERT_TRUE(png);
    EXPECT_EQ(pixel(png, 0, 0), RGB(200, 0, 0));
    EXPECT_EQ(pixel(png, 7, 7), RGB(255, 255, 255));
    Bytes red;
    for (int index = 0; index < 64; ++index)
        red.insert(red.end(), {0, 0, 200, 255});
    const ComPtr<IPictureDisp> jpeg = makePicture(encoded(GUID_ContainerFormatJpeg, 8, 8, red));
    ASSERT_TRUE(jpeg);
    EXPECT_NEAR(GetRValue(pixel(jpeg, 4, 4)), 200, 6);
}

TEST_F(CoverPicture, shines_through_where_it_is_partly_transparent) {
    Bytes pixels;
    for (int index = 0; index < 64; ++index)
        pixels.insert(pixels.end(), {0, 100, 200, 51});
    const ComPtr<IPictureDisp> png = makePicture(encoded(GUID_ContainerFormatPng, 8, 8, pixels));
    ASSERT_TRUE(png);
    EXPECT_EQ(pixel(png, 3, 3), RGB(244, 224, 204)) << "a fifth of it, and four of white";
}

TEST_F(CoverPicture, may_have_a_single_pixel) {
    const ComPtr<IPictureDisp> picture = makePicture(bmp(1, 1, 0x405060));
    ASSERT_TRUE(picture);
    EXPECT_EQ(pixel(picture, 0, 0), RGB(0x40, 0x50, 0x60));
}

TEST_F(CoverPicture, of_a_file_that_ends_within_its_pixels_is_none) {
    Bytes file = bmp(5, 4, 0x102030);
    file.resize(file.size() - 30);
    EXPECT_FALSE(makePicture(file));
}

TEST_F(CoverPicture, is_made_smaller_if_it_is_large) {
    const SIZE size = sizeOf(makePicture(bmp(3000, 1500, 0x00FF00)));
    EXPECT_EQ(size.cx, 2048);
    EXPECT_EQ(size.cy, 1024);
    EXPECT_EQ(sizeOf(makePicture(bmp(4000, 1, 0))).cy, 1);
}

TEST_F(CoverPicture, of_more_pixels_than_fit_in_memory_is_none) {
    EXPECT_FALSE(makePicture(bmp(2, 2, 0, 100'000, 100'000)));
    EXPECT_FALSE(makePicture(bmp(2, 2, 0, 6000, 4001)));
    // All of it is there: a bit for each pixel.
    const Bytes small =
        joined({bytesOf("BM"), littleNumber(62 + 752 * 4001), Bytes(4), littleNumber(62),
                littleNumber(40), littleNumber(6000), littleNumber(4001), littleNumber(1, 2),
                littleNumber(1, 2), Bytes(24), Bytes(8), Bytes(752 * 4001)});
    EXPECT_FALSE(makePicture(small));
}

TEST_F(CoverPicture, of_nothing_or_of_anything_else_is_none) {
    EXPECT_FALSE(makePicture({}));
    EXPECT_FALSE(makePicture(bytesOf("a text")));
    EXPECT_FALSE(makePicture(noise(5000)));
}

TEST_F(CoverPicture, without_COM_on_the_thread_is_none) {
    ::CoUninitialize();
    EXPECT_FALSE(makePicture(bmp(5, 4, 0)));
    EXPECT_TRUE(SUCCEEDED(::CoInitialize(nullptr)));
}

TEST_F(CoverPicture, of_damaged_files_is_a_picture_or_none) {
    Bytes pixels = noise(16 * 16 * 4);
    for (const GUID& kind :
         {GUID_ContainerFormatPng, GUID_ContainerFormatJpeg, GUID_ContainerFormatBmp})
        RandomDamage::forEachVariant(encoded(kind, 16, 16, pixels), [&](const Bytes& bytes) {
            const SIZE size = sizeOf(makePicture(bytes));
            ASSERT_LE(size.cx, static_cast<LONG>(longestPictureSide));
            ASSERT_LE(size.cy, static_cast<LONG>(longestPictureSide));
        });
}

} // namespace
} // namespace corvina::test

int main(int argc, char** argv) {
    return corvina::test::RandomDamage::runTests(argc, argv, 100);
}
