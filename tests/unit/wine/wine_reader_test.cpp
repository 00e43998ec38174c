// What the wrapper adds to Wine's reader.

#include "support/BareReader.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <nserror.h>

namespace corvina {
namespace {

using namespace test;

constexpr WORD wholeFile = 0xFFFF;

class WineReader : public testing::Test {
protected:
    void SetUp() override {
        if (!::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version"))
            GTEST_SKIP() << "Windows has a reader of its own";
        ASSERT_TRUE(bare_.opened());
        header_ = ComPtr<IWMSyncReader>(&bare_.reader()).query<IWMHeaderInfo3>();
        ASSERT_TRUE(header_);
    }

    std::wstring nameOf(WORD index) const {
        WORD nameLength = 100;
        WMT_ATTR_DATATYPE type{};
        WORD language = 0;
        DWORD valueLength = 1000;
        std::wstring name(nameLength, L'\0');
        std::vector<BYTE> value(valueLength);
        EXPECT_EQ(header_->GetAttributeByIndexEx(wholeFile, index, name.data(), &nameLength, &type,
                                                 &language, value.data(), &valueLength),
                  S_OK);
        return name.c_str();
    }

    BareReader bare_{mediaFile(L"tune.mp3")};
    ComPtr<IWMHeaderInfo3> header_;
};

TEST_F(WineReader, all_interfaces_belong_to_one_object) {
    const ComPtr<IUnknown> identity = header_.query<IUnknown>(IID_IUnknown);
    for (const IID& iid : {__uuidof(IWMSyncReader), __uuidof(IWMSyncReader2),
                           __uuidof(IWMHeaderInfo), __uuidof(IWMProfile)}) {
        const ComPtr<IUnknown> other = identity.query<IUnknown>(iid);
        ASSERT_TRUE(other);
        EXPECT_EQ(other.query<IUnknown>(IID_IUnknown).get(), identity.get());
    }
}

TEST_F(WineReader, it_lists_what_a_tagged_file_has) {
    WORD count = 0;
    ASSERT_EQ(header_->GetAttributeCountEx(wholeFile, &count), S_OK);
    std::vector<std::wstring> names;
    for (WORD index = 0; index < count; ++index)
        names.push_back(nameOf(index));
    for (const wchar_t* name :
         {L"Duration", L"Bitrate", L"Seekable", L"Title", L"Author", L"WM/AlbumTitle", L"WM/Genre",
          L"WM/TrackNumber", L"WM/Year", L"Description"})
        EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
}

TEST_F(WineReader, single_streams_have_no_attributes_of_their_own) {
    WORD count = 7;
    EXPECT_EQ(header_->GetAttributeCountEx(1, &count), S_OK);
    EXPECT_EQ(count, 0);
}

TEST_F(WineReader, an_index_past_the_last_is_refused) {
    WORD count = 0;
    ASSERT_EQ(header_->GetAttributeCountEx(wholeFile, &count), S_OK);
    WORD nameLength = 0;
    WORD language = 0;
    DWORD valueLength = 0;
    WMT_ATTR_DATATYPE type{};
    EXPECT_EQ(header_->GetAttributeByIndexEx(wholeFile, count, nullptr, &nameLength, &type,
                                             &language, nullptr, &valueLength),
              E_INVALIDARG);
}

TEST_F(WineReader, a_buffer_that_is_too_small_is_not_written_and_the_length_is_told) {
    WORD nameLength = 1;
    WORD language = 0;
    DWORD valueLength = 0;
    WMT_ATTR_DATATYPE type{};
    wchar_t name[100] = L"untouched";
    EXPECT_EQ(header_->GetAttributeByIndexEx(wholeFile, 0, name, &nameLength, &type, &language,
                                             nullptr, &valueLength),
              NS_E_SDK_BUFFERTOOSMALL);
    EXPECT_STREQ(name, L"untouched");
    EXPECT_EQ(nameLength, nameOf(0).size() + 1);
}

TEST_F(WineReader, the_range_from_the_first_frame_to_the_end_is_the_whole_file) {
    const std::vector<std::uint8_t> fresh = bare_.rest();
    EXPECT_EQ(bare_.reader().SetRangeByFrame(1, 0, 0), S_OK);
    EXPECT_TRUE(bare_.rest() == fresh);
}

TEST_F(WineReader, a_closed_reader_lists_nothing) {
    bare_.reader().Close();
    WORD count = 0;
    EXPECT_EQ(header_->GetAttributeCountEx(wholeFile, &count), NS_E_INVALID_REQUEST);
}

TEST_F(WineReader, a_file_that_it_cannot_use_is_closed) {
    TempFolder folder;
    const std::wstring path = folder.write(L"a.wma", std::vector<std::uint8_t>(1000, 'x'));
    EXPECT_FALSE(BareReader(path).opened());
    EXPECT_TRUE(::DeleteFileW(path.c_str()));
}

TEST_F(WineReader, what_is_not_wrapped_is_still_there) {
    const HMODULE library = ::GetModuleHandleW(L"wmvcore.dll");
    for (const char* name : {"WMCreateReader", "WMCreateProfileManager", "WMCreateWriter",
                             "WMIsContentProtected", "WMCheckURLScheme", "WMCreateSyncReaderPriv"})
        EXPECT_TRUE(::GetProcAddress(library, name)) << name;
}

} // namespace
} // namespace corvina
