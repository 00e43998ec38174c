// What the wrapper keeps from Wine's reader, or Wine's reader from us.

#include "support/BareReader.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <nserror.h>

namespace corvina {
namespace {

using namespace test;

// Places in the tune.
constexpr std::size_t headerSize = 16;
constexpr std::size_t objectCount = 24;
constexpr std::size_t firstObjectSize = 46;
constexpr std::size_t smallestPacket = 30 + 92;

class DamagedForWine : public testing::Test {
protected:
    void SetUp() override {
        if (!::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version"))
            GTEST_SKIP() << "Windows has a reader of its own";
        reader_ = BareReader::create();
        ASSERT_TRUE(reader_);
    }

    HRESULT open(const Bytes& bytes) {
        const HRESULT result = reader_->Open(folder_.write(L"a.wma", bytes).c_str());
        if (result == S_OK)
            reader_->Close();
        return result;
    }

    // What a file with these bytes gives from start to end.
    Bytes sound(const Bytes& bytes) { return BareReader(folder_.write(L"b.wma", bytes)).rest(); }

    TempFolder folder_;
    ComPtr<IWMSyncReader> reader_;
    const Bytes tune_ = fileBytes(mediaFile(L"tune.wma"));

    // The encoder decides how long the header is and how many objects it has.
    [[nodiscard]] std::uint32_t number(std::size_t at) const {
        std::uint32_t value = 0;
        std::memcpy(&value, &tune_.at(at), sizeof value);
        return value;
    }
    const std::size_t dataObject = number(headerSize);
    const std::size_t firstPacket = dataObject + 50;
    const std::size_t lastObjectSize = [this] {
        std::size_t object = 30;
        for (std::uint32_t left = number(objectCount); left > 1; --left)
            object += number(object + 16);
        return object + 16;
    }();
};

void put(Bytes& bytes, std::size_t at, std::uint32_t value) {
    std::memcpy(&bytes.at(at), &value, sizeof value);
}

TEST_F(DamagedForWine, a_header_that_does_not_hold_together_is_refused_before_wine_sees_it) {
    ASSERT_EQ(open(tune_), S_OK);
    for (const std::size_t place :
         {headerSize, objectCount, firstObjectSize, smallestPacket, lastObjectSize, dataObject}) {
        for (const std::uint32_t value : {0x10u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
            Bytes bytes = tune_;
            put(bytes, place, value);
            EXPECT_EQ(open(bytes), NS_E_INVALID_INPUT_FORMAT) << place << ' ' << value;
        }
    }
}

TEST_F(DamagedForWine, a_file_of_a_kind_that_windows_reader_does_not_know_is_refused) {
    for (const wchar_t* name : {L"clip.wav", L"clip.ogg", L"clip.ape", L"clip.aiff", L"clip.au"})
        EXPECT_EQ(open(fileBytes(mediaFile(name))), NS_E_UNRECOGNIZED_STREAM_TYPE) << name;
    EXPECT_EQ(open(fileBytes(mediaFile(L"tune.mp3"))), S_OK);
}

TEST_F(DamagedForWine, a_file_that_ends_within_its_first_packet_is_refused) {
    for (const std::size_t length : {dataObject, firstPacket, firstPacket + 1, firstPacket + 3199})
        EXPECT_EQ(open({tune_.begin(), tune_.begin() + static_cast<int>(length)}),
                  NS_E_INVALID_INPUT_FORMAT)
            << length;
    EXPECT_EQ(open({tune_.begin(), tune_.begin() + static_cast<int>(firstPacket + 3200)}), S_OK);
}

// Memory of that size would be reserved, and the process ended if there is not so much.
TEST_F(DamagedForWine, a_sound_that_claims_to_be_huge_is_left_out) {
    const std::uint8_t one[] = {8, 0xE7, 0x02, 0, 0}; // 8 bytes follow, the first four a size
    const auto middle = tune_.begin() + static_cast<int>(tune_.size() / 2);
    const auto found = std::search(middle, tune_.end(), std::begin(one), std::end(one));
    ASSERT_NE(found, tune_.end());
    const std::size_t whole = sound(tune_).size();
    for (const std::uint32_t claim : {0x0F000000u, 0x6D0002E7u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        Bytes bytes = tune_;
        put(bytes, static_cast<std::size_t>(found - tune_.begin()) + 1, claim);
        const std::size_t left = sound(bytes).size();
        EXPECT_LT(left, whole) << claim;
        EXPECT_GT(left, whole * 9 / 10) << claim;
    }
}

TEST_F(DamagedForWine, an_index_may_claim_any_number_of_entries) {
    const Bytes index{0x90, 0x08, 0x00, 0x33, 0xB1, 0xE5, 0xCF, 0x11, 0x89, 0xF4, //
                      0x00, 0xA0, 0xC9, 0x03, 0x49, 0xCB, 116,  0,    0,    0};
    const std::size_t whole = sound(tune_).size();
    for (const std::uint32_t claim : {10u, 0x06000000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        Bytes bytes = tune_;
        bytes.insert(bytes.end(), index.begin(), index.end());
        bytes.resize(tune_.size() + 116);
        put(bytes, tune_.size() + 40, 10'000'000); // interval: a second
        put(bytes, tune_.size() + 52, claim);
        EXPECT_EQ(sound(bytes).size(), whole) << claim;
    }
}

// A stream whose bytes do not come before release() is called. It lives as long as the program,
// because the reader that waits for it has it for ever.
class StalledStream final : public IStream {
public:
    void release() { ::SetEvent(released_); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Read(void*, ULONG, ULONG*) override {
        ::WaitForSingleObject(released_, INFINITE);
        return E_FAIL;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* status, DWORD) override {
        *status = {};
        status->cbSize.QuadPart = 1000;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                     ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    const HANDLE released_ = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
};

TEST_F(DamagedForWine, an_open_that_never_ends_fails_in_time_and_the_reader_opens_the_next_file) {
    static StalledStream stalled;
    const auto reader = reader_.query<IWMSyncReader2>();
    const auto header = reader_.query<IWMHeaderInfo3>();
    ::SetEnvironmentVariableW(L"CORVINA_READER_LIMIT", L"200");
    const DWORD start = ::GetTickCount();
    EXPECT_EQ(reader->OpenStream(&stalled), HRESULT_FROM_WIN32(ERROR_TIMEOUT));
    EXPECT_GE(::GetTickCount() - start, 190u);
    ::SetEnvironmentVariableW(L"CORVINA_READER_LIMIT", nullptr);

    WORD count = 0;
    EXPECT_NE(header->GetAttributeCountEx(0xFFFF, &count), S_OK);
    ASSERT_EQ(reader->Open(mediaFile(L"tune.mp3").c_str()), S_OK);
    EXPECT_EQ(header->GetAttributeCountEx(0xFFFF, &count), S_OK);
    EXPECT_GT(count, 3);
    DWORD outputs = 0;
    EXPECT_EQ(reader->GetOutputCount(&outputs), S_OK);
    EXPECT_EQ(outputs, 1u);
    EXPECT_EQ(reader->Close(), S_OK);
    stalled.release();
}

} // namespace
} // namespace corvina
