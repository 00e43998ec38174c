#include "stream/Encoder.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace corvina {
namespace {

// Every member of the interface in the published order, called through its slot: after the three of
// IUnknown and the four of IDispatch come twelve texts, each write then read, then the rest.
constexpr std::size_t firstSlot = 7;

void** slotsOf(IEncoder* encoder) {
    return *reinterpret_cast<void***>(encoder);
}

class EncoderTest : public testing::Test {
protected:
    ComPtr<Encoder> object_ = makeCom<Encoder>();
    IEncoder* encoder_ = object_.get();
};

TEST_F(EncoderTest, the_first_24_slots_write_and_read_twelve_texts_in_turn) {
    using Put = HRESULT(STDMETHODCALLTYPE*)(IEncoder*, BSTR);
    using Get = HRESULT(STDMETHODCALLTYPE*)(IEncoder*, BSTR*);
    const BSTR text = ::SysAllocString(L"text");
    for (std::size_t pair = 0; pair < 12; ++pair) {
        void** const slot = slotsOf(encoder_) + firstSlot + 2 * pair;
        EXPECT_EQ(reinterpret_cast<Put>(slot[0])(encoder_, text), S_OK);
        BSTR result = text;
        EXPECT_EQ(reinterpret_cast<Get>(slot[1])(encoder_, &result), S_OK);
        EXPECT_EQ(::SysStringLen(result), 0u) << pair;
    }
    ::SysFreeString(text);
}

TEST_F(EncoderTest, the_texts_stand_in_the_published_order) {
    // An encoder that overrides one member shows in which slot that member stands.
    struct Recorder final : Encoder {
        std::wstring called;
        HRESULT note(const wchar_t* name) {
            called += name;
            called += L' ';
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE put_Title(BSTR) override { return note(L"Title"); }
        HRESULT STDMETHODCALLTYPE put_Album(BSTR) override { return note(L"Album"); }
        HRESULT STDMETHODCALLTYPE put_Artist(BSTR) override { return note(L"Artist"); }
        HRESULT STDMETHODCALLTYPE put_SongYear(BSTR) override { return note(L"SongYear"); }
        HRESULT STDMETHODCALLTYPE put_Genre(BSTR) override { return note(L"Genre"); }
        HRESULT STDMETHODCALLTYPE put_Comment(BSTR) override { return note(L"Comment"); }
        HRESULT STDMETHODCALLTYPE put_TrackNr(BSTR) override { return note(L"TrackNr"); }
        HRESULT STDMETHODCALLTYPE put_EncodedBy(BSTR) override { return note(L"EncodedBy"); }
        HRESULT STDMETHODCALLTYPE put_LinkTo(BSTR) override { return note(L"LinkTo"); }
        HRESULT STDMETHODCALLTYPE put_Copyright(BSTR) override { return note(L"Copyright"); }
        HRESULT STDMETHODCALLTYPE put_Composer(BSTR) override { return note(L"Composer"); }
        HRESULT STDMETHODCALLTYPE put_OrigArtist(BSTR) override { return note(L"OrigArtist"); }
        HRESULT STDMETHODCALLTYPE get_BytesProcessed(double*) override {
            return note(L"BytesProcessed");
        }
        HRESULT STDMETHODCALLTYPE get_Extension(BSTR*) override { return note(L"Extension"); }
        HRESULT STDMETHODCALLTYPE DeInit(long*) override { return note(L"DeInit"); }
    };
    const ComPtr<Recorder> recorder = makeCom<Recorder>();
    using OneArgument = HRESULT(STDMETHODCALLTYPE*)(IEncoder*, void*);
    void** const slot = slotsOf(recorder.get()) + firstSlot;
    for (std::size_t pair = 0; pair < 12; ++pair)
        reinterpret_cast<OneArgument>(slot[2 * pair])(recorder.get(), nullptr);
    for (std::size_t after = 24; after < 27; ++after)
        reinterpret_cast<OneArgument>(slot[after])(recorder.get(), nullptr);
    EXPECT_EQ(recorder->called,
              L"Title Album Artist SongYear Genre Comment TrackNr EncodedBy LinkTo Copyright "
              L"Composer OrigArtist BytesProcessed Extension DeInit ");
}

TEST_F(EncoderTest, no_bytes_are_processed_and_nothing_is_written) {
    double bytes = 1;
    EXPECT_EQ(encoder_->get_BytesProcessed(&bytes), S_OK);
    EXPECT_EQ(bytes, 0.0);
    BSTR extension = nullptr;
    EXPECT_EQ(encoder_->get_Extension(&extension), S_OK);
    EXPECT_EQ(::SysStringLen(extension), 0u);
}

TEST_F(EncoderTest, the_operations_return_0_and_leave_the_callers_count_alone) {
    const BSTR name = ::SysAllocString(L"out.xyz");
    long count = 77;
    long result = 1;
    EXPECT_EQ(encoder_->Init(name, 44100, 2, 16, &count, &result), S_OK);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(count, 77);
    result = 1;
    EXPECT_EQ(encoder_->Encode(1, -1, &result), S_OK);
    EXPECT_EQ(result, 0);
    result = 1;
    EXPECT_EQ(encoder_->DeInit(&result), S_OK);
    EXPECT_EQ(result, 0);
    ::SysFreeString(name);
}

TEST_F(EncoderTest, a_missing_result_is_refused) {
    EXPECT_EQ(encoder_->get_Title(nullptr), E_POINTER);
    EXPECT_EQ(encoder_->get_BytesProcessed(nullptr), E_POINTER);
    EXPECT_EQ(encoder_->DeInit(nullptr), E_POINTER);
    EXPECT_EQ(encoder_->Init(nullptr, 0, 0, 0, nullptr, nullptr), E_POINTER);
}

TEST_F(EncoderTest, it_returns_for_its_interface_and_the_two_below) {
    EXPECT_TRUE(object_.query<IEncoder>());
    EXPECT_TRUE(object_.query<IDispatch>());
    EXPECT_TRUE(object_.query<IUnknown>());
    EXPECT_FALSE(object_.query<IPersist>());
}

} // namespace
} // namespace corvina
