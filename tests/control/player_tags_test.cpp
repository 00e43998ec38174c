// The tags, cover and format of the opened file through the registered player: early-bound,
// late-bound, from inside events, and with hostile arguments.

#include "PlayerControlFixture.h"
#include "runtime/Text.h"
#include "support/PictureBytes.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"

#include <algorithm>

using namespace corvina;
using namespace corvina::test;

namespace {

class PlayerTags : public PlayerControl {
protected:
    void SetUp() override {
        PlayerControl::SetUp();
        ASSERT_EQ(S_OK, player->Init(&number));
    }

    // A file of sound with a tag of that title, another one and a cover.
    std::wstring tagged(const std::wstring& name, const std::wstring& title) {
        const Bytes tag = id3Tag(joined({id3Text("TIT2", title), id3Text("TPE1", L"Band"),
                                         id3Picture(3, bmp(3, 2, 0xFF0000))}));
        return folder.write(name, WavBytes()
                                      .format(pcm(44100, 2, 16))
                                      .chunk("data", Bytes(44100))
                                      .chunk("id3 ", tag)
                                      .bytes());
    }

    std::wstring tag(const wchar_t* name) {
        Bstr text;
        EXPECT_EQ(S_OK, player->get_TagText(Bstr(name).get(), text.put()));
        return textOf(text.get());
    }
    long count() {
        long tags = -1;
        EXPECT_EQ(S_OK, player->get_TagCount(&tags));
        return tags;
    }
    ComPtr<IPictureDisp> picture() {
        ComPtr<IPictureDisp> result;
        EXPECT_EQ(S_OK, player->get_Picture(result.put()));
        return result;
    }
    std::wstring format() {
        Bstr text;
        EXPECT_EQ(S_OK, player->get_FormatName(text.put()));
        return textOf(text.get());
    }
    void expectNothing() {
        EXPECT_EQ(0, count());
        EXPECT_EQ(L"", tag(L"TITLE"));
        EXPECT_FALSE(picture());
        EXPECT_EQ(L"", format());
        Bstr name;
        EXPECT_EQ(invalidPropertyValue, player->get_TagName(1, name.put()));
        EXPECT_EQ(L"Index must be that of a tag, and there are no tags", errorText());
    }

    TempFolder folder;
};

TEST_F(PlayerTags, are_nothing_without_an_opened_file) {
    expectNothing();
    EXPECT_EQ(S_OK, player->DeInit(&number));
    expectNothing();
    player = create<_cPlayer>(CLSID_cPlayer); // before Init
    expectNothing();
}

TEST_F(PlayerTags, of_the_opened_file_are_read_by_an_early_bound_host) {
    ASSERT_EQ(0, open(tagged(L"a.wav", L"Gr\u00FC\u00DFe \u4E2D").c_str()));
    EXPECT_EQ(2, count());
    EXPECT_EQ(L"Gr\u00FC\u00DFe \u4E2D", tag(L"TITLE"));
    EXPECT_EQ(L"Band", tag(L"artist")) << "in any case";
    EXPECT_EQ(L"", tag(L"ALBUM"));
    EXPECT_EQ(L"WAV, 16 bits", format());
    std::vector<std::wstring> names;
    for (long index = 1; index <= 2; ++index) {
        Bstr name;
        EXPECT_EQ(S_OK, player->get_TagName(index, name.put()));
        names.push_back(textOf(name.get()));
    }
    EXPECT_EQ((std::vector<std::wstring>{L"ARTIST", L"TITLE"}), names);
}

TEST_F(PlayerTags, of_the_opened_file_are_read_by_a_late_bound_host) {
    ASSERT_EQ(0, open(tagged(L"a.wav", L"Song").c_str()));
    Variant result;
    const auto get = [&](const wchar_t* name, std::vector<Variant> arguments = {}) {
        ::VariantClear(&result);
        return callByName(player.get(), name, DISPATCH_PROPERTYGET, std::move(arguments), &result);
    };
    EXPECT_EQ(S_OK, get(L"TagText", {Variant(L"title")}));
    EXPECT_EQ(L"Song", textOf(V_BSTR(&result)));
    EXPECT_EQ(S_OK, get(L"TagCount"));
    EXPECT_EQ(2, V_I4(&result));
    EXPECT_EQ(S_OK, get(L"TagName", {Variant(L"2")}));
    EXPECT_EQ(L"TITLE", textOf(V_BSTR(&result)));
    EXPECT_EQ(S_OK, get(L"Picture"));
    ASSERT_EQ(VT_DISPATCH, V_VT(&result));
    ASSERT_NE(nullptr, V_DISPATCH(&result));
    Variant width;
    EXPECT_EQ(S_OK, callByName(V_DISPATCH(&result), L"Width", DISPATCH_PROPERTYGET, {}, &width));
    ASSERT_EQ(0, open(folder.write(L"b.wav", plainWav(pcm(8000, 1, 8), Bytes(10))).c_str()));
    EXPECT_EQ(S_OK, get(L"Picture"));
    ASSERT_EQ(VT_DISPATCH, V_VT(&result));
    EXPECT_EQ(nullptr, V_DISPATCH(&result)) << "Nothing";
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, get(L"Picture", {Variant(1)})) << "it has no default member";
    for (const wchar_t* name : {L"TagText", L"TagCount", L"TagName", L"Picture"})
        EXPECT_TRUE(FAILED(callByName(player.get(), name, DISPATCH_PROPERTYPUT, {Variant(1)})))
            << "it is read-only";
}

TEST_F(PlayerTags, hostile_arguments_are_refused_or_find_nothing) {
    ASSERT_EQ(0, open(tagged(L"a.wav", L"Song").c_str()));
    Bstr text;
    EXPECT_EQ(S_OK, player->get_TagText(nullptr, text.put()));
    EXPECT_EQ(L"", textOf(text.get()));
    for (const std::wstring& name : {std::wstring(), std::wstring(1 << 20, L'T'),
                                     std::wstring(L"TITLE\0x", 7), std::wstring(L"TITLE ")}) {
        EXPECT_EQ(S_OK, player->get_TagText(Bstr(name).get(), text.put()));
        EXPECT_EQ(L"", textOf(text.get()));
    }
    EXPECT_EQ(E_POINTER, player->get_TagText(Bstr(L"TITLE").get(), nullptr));
    EXPECT_EQ(E_POINTER, player->get_TagCount(nullptr));
    EXPECT_EQ(E_POINTER, player->get_TagName(1, nullptr));
    EXPECT_EQ(E_POINTER, player->get_Picture(nullptr));
    for (const long index : {0L, 3L, -1L, 0x7FFFFFFFL, static_cast<long>(0x80000000)}) {
        EXPECT_EQ(invalidPropertyValue, player->get_TagName(index, text.put())) << index;
        EXPECT_EQ(L"Index must be from 1 to 2", errorText());
    }
}

TEST_F(PlayerTags, the_cover_is_a_picture_that_outlives_the_player) {
    ASSERT_EQ(0, open(tagged(L"a.wav", L"Song").c_str()));
    const ComPtr<IPictureDisp> cover = picture();
    ASSERT_TRUE(cover);
    EXPECT_EQ(cover.get(), picture().get()) << "the same each time";
    const auto drawn = cover.query<IPicture>();
    ASSERT_EQ(0, open(folder.write(L"b.wav", plainWav(pcm(8000, 1, 8), Bytes(10))).c_str()));
    EXPECT_FALSE(picture());
    player.reset();
    short type = 0;
    EXPECT_EQ(S_OK, drawn->get_Type(&type));
    EXPECT_EQ(PICTYPE_BITMAP, type);
    OLE_HANDLE bitmap = 0;
    EXPECT_EQ(S_OK, drawn->get_Handle(&bitmap));
    BITMAP size{};
    ::GetObjectW(reinterpret_cast<HBITMAP>(static_cast<LONG_PTR>(static_cast<LONG>(bitmap))),
                 sizeof size, &size);
    EXPECT_EQ(3, size.bmWidth);
    EXPECT_EQ(2, size.bmHeight);
}

TEST_F(PlayerTags, follow_the_file_that_is_opened_also_under_the_same_name) {
    ASSERT_EQ(0, open(tagged(L"a.wav", L"One").c_str()));
    EXPECT_EQ(L"One", tag(L"TITLE"));
    EXPECT_EQ(S_OK, player->DeInit(&number)); // closes it, so that it can be written
    const std::wstring again = tagged(L"a.wav", L"Two");
    ASSERT_EQ(S_OK, player->Init(&number));
    EXPECT_EQ(L"", tag(L"TITLE"));
    ASSERT_EQ(0, open(again.c_str()));
    EXPECT_EQ(L"Two", tag(L"TITLE"));
    EXPECT_EQ(2, open(folder.write(L"a.unknown", {0}).c_str()));
    expectNothing();
    EXPECT_EQ(3, open(folder.write(L"broken.wav", {0}).c_str()));
    expectNothing();
}

TEST_F(PlayerTags, a_file_that_was_never_asked_about_is_not_read) {
    ASSERT_EQ(0, open(tagged(L"a.wav", L"One").c_str()));
    EXPECT_EQ(nullptr, ::GetModuleHandleW(L"CorvinaTags.dll"));
    EXPECT_EQ(2, count());
    EXPECT_NE(nullptr, ::GetModuleHandleW(L"CorvinaTags.dll"));
    player.reset();
    EXPECT_EQ(nullptr, ::GetModuleHandleW(L"CorvinaTags.dll"));
}

TEST_F(PlayerTags, can_be_asked_for_inside_every_event_and_follow_the_next_file) {
    if (::waveOutGetNumDevs() == 0)
        GTEST_SKIP() << "there is no wave output device";
    constexpr DISPID ended = 3, nextStarted = 6;
    const std::wstring first = tagged(L"first.wav", L"First");
    const std::wstring second = tagged(L"second.wav", L"Second");
    EventSink sink(IID_NULL);
    std::vector<std::pair<DISPID, std::wstring>> titles;
    sink.handler = [&](const EventSink::Event& event) {
        titles.emplace_back(event.id, tag(L"TITLE"));
        EXPECT_EQ(2, count());
        EXPECT_TRUE(picture());
        EXPECT_EQ(L"WAV, 16 bits", format());
    };
    ASSERT_EQ(S_OK, sink.connect(player.get(), DIID___cPlayer));
    ASSERT_EQ(S_OK, player->put_PositionInterval(20));
    ASSERT_EQ(S_OK, player->put_NextFile(Bstr(second).get()));
    ASSERT_EQ(S_OK, player->PlayStart(Bstr(first).get(), -1, 0, &number));
    ASSERT_EQ(0, number);
    const auto came = [&](DISPID id) {
        return std::any_of(titles.begin(), titles.end(),
                           [id](const auto& each) { return each.first == id; });
    };
    EXPECT_TRUE(pumpUntil([&] { return came(ended); }));
    EXPECT_TRUE(came(nextStarted));
    EXPECT_EQ(L"First", titles.front().second);
    bool next = false;
    for (const auto& [id, title] : titles) {
        next = next || id == nextStarted;
        EXPECT_EQ(next ? L"Second" : L"First", title);
    }
    sink.disconnect();
    EXPECT_EQ(S_OK, player->DeInit(&number));
}

} // namespace
