#include "ConverterFixture.h"

namespace corvina::test {
namespace {

TEST_F(Converter, each_converted_block_of_16_bits_reaches_the_observer_once_and_whole) {
    MemorySource source(pcm(500, 1, 16), noise(1200));
    ASSERT_TRUE(start(source));
    pullAll(100);
    ASSERT_EQ(observer_.blocks.size(), 3u);
    EXPECT_EQ(observer_.blocks[0].bytes, 500);
    EXPECT_EQ(observer_.blocks[2].bytes, 200);
    EXPECT_EQ(observer_.blocks[0].channels, 1);
    EXPECT_EQ(observer_.blocks[0].elements, 250u);
    Bytes seen;
    for (const auto& block : observer_.blocks)
        seen.insert(seen.end(), block.content.begin(), block.content.end());
    EXPECT_EQ(seen, noise(1200));
}

TEST_F(Converter, a_block_of_8_bits_never_reaches_the_observer) {
    MemorySource source(pcm(1000, 1, 8), noise(1200));
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100).size(), 1200u);
    EXPECT_TRUE(observer_.blocks.empty());
}

TEST_F(Converter, an_empty_block_never_reaches_the_observer) {
    MemorySource source(pcm(500, 1, 16), {});
    ASSERT_TRUE(start(source));
    pull(100);
    EXPECT_TRUE(observer_.blocks.empty());
}

TEST_F(Converter, an_observer_is_not_needed) {
    MemorySource source(pcm(500, 1, 16), noise(1200));
    cPCM converter(fakeAcmApi);
    ASSERT_TRUE(converter.InitConversion(source, nullptr, false));
    Bytes buffer(100);
    std::int32_t got = 0;
    EXPECT_TRUE(converter.GetSamples(buffer.data(), 100, got));
    EXPECT_EQ(got, 100);
}

TEST_F(Converter, the_observer_is_not_counted) {
    MemorySource source(pcm(500, 1, 16), noise(1200));
    ASSERT_TRUE(start(source));
    pullAll(100);
    EXPECT_EQ(observer_.AddRef(), 2u);
    observer_.Release();
}

TEST_F(Converter, the_observer_sees_an_array_of_16_bit_integers_from_index_0) {
    MemorySource source(pcm(500, 1, 16), noise(500));
    ASSERT_TRUE(start(source));
    pull(100);
    EXPECT_EQ(observer_.type, VT_I2);
    EXPECT_EQ(observer_.lowerBound, 0);
}

TEST_F(Converter, an_observer_cannot_free_or_resize_the_array) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    observer_.act = [](SAFEARRAY** samples) {
        SAFEARRAYBOUND bound{1, 0};
        EXPECT_NE(::SafeArrayRedim(*samples, &bound), S_OK);
        EXPECT_NE(::SafeArrayDestroyData(*samples), S_OK);
        EXPECT_NE(::SafeArrayDestroy(*samples), S_OK);
    };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100), noise(1500));
}

TEST_F(Converter, an_observer_may_put_an_array_of_its_own_in_the_place) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    observer_.act = [](SAFEARRAY** samples) { *samples = ::SafeArrayCreateVector(VT_I2, 0, 10); };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100), noise(1500));
    observer_.act = [](SAFEARRAY** samples) { *samples = nullptr; };
    ASSERT_TRUE(start(source));
    source.position = 0;
    EXPECT_EQ(pullAll(100), noise(1500));
}

// Counts how often it is released.
class CountedObject final : public IUnknown {
public:
    int releases = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override {
        ++releases;
        return 1;
    }
};

TEST_F(Converter, an_array_that_an_observer_put_in_the_place_is_destroyed) {
    MemorySource source(pcm(500, 1, 16), noise(500));
    CountedObject element;
    observer_.act = [&element](SAFEARRAY** samples) {
        *samples = ::SafeArrayCreateVector(VT_UNKNOWN, 0, 1);
        static_cast<IUnknown**>((*samples)->pvData)[0] = &element;
    };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(500), noise(500));
    EXPECT_EQ(1, element.releases);
}

TEST_F(Converter, what_an_observer_writes_into_the_samples_is_played) {
    MemorySource source(pcm(500, 1, 16), noise(500));
    observer_.act = [](SAFEARRAY** samples) { std::memset((*samples)->pvData, 0, 500); };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100), Bytes(500));
}

TEST_F(Converter, an_observer_may_close_the_converter) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    observer_.act = [this](SAFEARRAY**) { converter_->CloseConverter(); };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(500), 500);
    EXPECT_EQ(pulled_, Bytes(500));
    EXPECT_EQ(fakeAcm.openStreams, 0);
}

} // namespace
} // namespace corvina::test
