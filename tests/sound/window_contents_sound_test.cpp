// What is opened in the player window, how it looks and what it is called.

#include "Unicode.h"
#include "WindowTest.h"
#include "support/FileBytes.h"
#include "support/PictureBytes.h"
#include "support/TagBytes.h"
#include "window/ChildControls.h"
#include "window/CoverView.h"
#include "window/FileChoice.h"
#include "window/WindowPicture.h"

#include <algorithm>
#include <shellapi.h>
#include <shlobj.h>

#include <oleacc.h>

namespace corvina::test {
namespace {

using Window = WindowTest;

HGLOBAL dropOf(const std::vector<std::wstring>& paths) {
    std::wstring names;
    for (const std::wstring& path : paths)
        names.append(path).push_back(L'\0');
    names.push_back(L'\0');
    const std::size_t bytes = names.size() * sizeof(wchar_t);
    const HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(DROPFILES) + bytes);
    auto* const drop = static_cast<DROPFILES*>(::GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    drop->fWide = TRUE;
    std::memcpy(drop + 1, names.data(), bytes);
    ::GlobalUnlock(memory);
    return memory;
}

bool hasLabelWith(HWND window, const std::wstring& words) {
    for (HWND child = ::GetWindow(window, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        if (wchar_t text[256] = L""; ::GetWindowTextW(child, text, 256) > 0 &&
                                     std::wstring(text).find(words) != std::wstring::npos)
            return true;
    return false;
}

TEST_F(Window, plays_the_files_folders_and_sheets_that_are_dropped_on_it) {
    TempFolder music;
    const std::wstring whole = music.write(L"a.wav", stereoWav(signal(10 * 44100)));
    (void)music.write(L"notes.txt", {1});
    TempFolder other;
    const std::string text = "FILE \"" + app::toUtf8(whole) +
                             "\" WAVE\nTRACK 01 AUDIO\nTITLE \"First part\"\nINDEX 01 00:00:00\n"
                             "TRACK 02 AUDIO\nTITLE \"Second part\"\nINDEX 01 00:04:00\n";
    const std::wstring sheet = other.write(L"sheet.cue", Bytes(text.begin(), text.end()));
    ::SendMessageW(window->handle(), WM_DROPFILES,
                   reinterpret_cast<WPARAM>(dropOf({music.path(), sheet})), 0);
    ASSERT_EQ(queue->tracks().size(), 3u);
    EXPECT_NE(line(0).find(L"a.wav"), std::wstring::npos);
    EXPECT_NE(line(1).find(L"First part"), std::wstring::npos);
    EXPECT_EQ(queue->tracks()[2], app::Track(whole, 4000, 0, L"Second part"));
    EXPECT_TRUE(queue->isPlaying());
    queue->play(2);
    ASSERT_TRUE(pumpUntil([this] { return queue->isPlaying() && queue->current() == 2; }));
    EXPECT_EQ(::SendMessageW(control(CTL_SEEK), TBM_GETRANGEMAX, 0, 0), 6000);
    EXPECT_NE(textOf(window->handle()).find(L"Second part"), std::wstring::npos);
    EXPECT_TRUE(hasLabelWith(window->handle(), L"kbit/s, 0:00:06"));
    queue->stop();
    EXPECT_TRUE(waitForEnd());
}

TEST_F(Window, its_picture_shows_the_part_that_is_on_the_screen) {
    constexpr int visible = 100;
    const int screenWidth = ::GetSystemMetrics(SM_CXVIRTUALSCREEN);
    ::SetWindowPos(window->handle(), nullptr, screenWidth - visible, 0, 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER);
    const std::wstring picturePath = folder.file(L"window.png");
    ASSERT_TRUE(app::saveWindowPicture(window->handle(), picturePath));
    const Bytes picture = fileBytes(picturePath);
    ASSERT_GT(picture.size(), 24u);
    EXPECT_EQ(picture[18] * 256 + picture[19], visible);

    ::SetWindowPos(window->handle(), nullptr, screenWidth, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_FALSE(app::saveWindowPicture(window->handle(), picturePath));
}

TEST_F(Window, offers_in_its_dialog_what_the_control_can_play) {
    const std::wstring kinds = app::kindsOfFiles(queue->player().extensions());
    for (const wchar_t* pattern : {L"*.wav", L"*.mp3", L"*.flac", L"*.m4a", L"*.cue", L"*.m3u"})
        EXPECT_NE(kinds.find(pattern), std::wstring::npos) << app::toUtf8(pattern);
}

std::vector<RECT> placesOfControls(HWND window) {
    std::vector<RECT> places;
    for (HWND child = ::GetWindow(window, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        if (RECT place{}; ::IsWindowVisible(child) && ::GetWindowRect(child, &place)) {
            wchar_t kind[32] = L"";
            ::GetClassNameW(child, kind, 32);
            places.push_back(place);
        }
    return places;
}

TEST_F(Window, nothing_overlaps_from_its_least_size_on) {
    MINMAXINFO limits{};
    for (int count = 0; count < 2; ++count) {
        ::SendMessageW(window->handle(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
        const POINT least = limits.ptMinTrackSize;
        for (const POINT size : {least, POINT{least.x + 130, least.y}, POINT{900, least.y + 200}}) {
            ::SetWindowPos(window->handle(), nullptr, 0, 0, size.x, size.y,
                           SWP_NOMOVE | SWP_NOZORDER);
            RECT client{};
            ::GetClientRect(window->handle(), &client);
            ::MapWindowPoints(window->handle(), nullptr, reinterpret_cast<POINT*>(&client), 2);
            const std::vector<RECT> places = placesOfControls(window->handle());
            for (std::size_t one = 0; one < places.size(); ++one) {
                RECT common{};
                ::IntersectRect(&common, &places[one], &client);
                EXPECT_TRUE(::EqualRect(&common, &places[one])) << one << " at " << size.x;
                for (std::size_t other = one + 1; other < places.size(); ++other)
                    EXPECT_FALSE(::IntersectRect(&common, &places[one], &places[other]))
                        << one << " and " << other << " at " << size.x << " x " << size.y;
            }
            RECT list{};
            ::GetWindowRect(this->list(), &list);
            EXPECT_GT(list.bottom - list.top, 30);
        }
        command(CMD_EQUALIZER);
    }
}

std::wstring accessibleName(HWND control) {
    IAccessible* object = nullptr;
    if (FAILED(::AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT),
                                            IID_IAccessible, reinterpret_cast<void**>(&object))))
        return {};
    VARIANT self{};
    self.vt = VT_I4;
    BSTR name = nullptr;
    object->get_accName(self, &name);
    std::wstring result(name ? name : L"", ::SysStringLen(name));
    ::SysFreeString(name);
    object->Release();
    return result;
}

TEST_F(Window, every_control_says_its_name_to_screen_readers) {
    const std::vector<std::pair<int, std::wstring>> names{
        {CTL_SEEK, L"Position"},
        {CTL_VOLUME, L"Volume"},
        {CTL_BALANCE, L"Balance"},
        {CTL_LIST, L"Tracks"},
        {CMD_MUTE, L"Mute"},
        {CMD_PAUSE, L"Play"},
        {CTL_BANDS, L"Equalizer 31 Hz, decibels"}};
    for (const auto& [id, name] : names)
        EXPECT_EQ(accessibleName(control(id)), name);
}

app::IPicturePtr redPicture(int width, int height) {
    const HDC screen = ::GetDC(nullptr);
    const HDC memory = ::CreateCompatibleDC(screen);
    PICTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.picType = PICTYPE_BITMAP;
    description.bmp.hbitmap = ::CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ former = ::SelectObject(memory, description.bmp.hbitmap);
    const HBRUSH brush = ::CreateSolidBrush(RGB(200, 0, 0));
    const RECT area{0, 0, width, height};
    ::FillRect(memory, &area, brush);
    ::DeleteObject(brush);
    ::SelectObject(memory, former);
    ::DeleteDC(memory);
    ::ReleaseDC(nullptr, screen);
    IPicture* picture = nullptr;
    ::OleCreatePictureIndirect(&description, IID_IPicture, TRUE,
                               reinterpret_cast<void**>(&picture));
    return app::IPicturePtr(picture, false);
}

TEST_F(Window, shows_a_cover_whole_in_its_shape) {
    app::CoverView cover(window->handle());
    app::place(cover.window(), 0, 0, 60, 60);
    ::SetWindowPos(cover.window(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_FALSE(::IsWindowVisible(cover.window()));
    cover.show(redPicture(40, 20));
    EXPECT_TRUE(::IsWindowVisible(cover.window()));
    ::UpdateWindow(cover.window());
    const HDC dc = ::GetDC(cover.window());
    EXPECT_EQ(::GetPixel(dc, 2, 30), RGB(200, 0, 0));
    EXPECT_EQ(::GetPixel(dc, 57, 30), RGB(200, 0, 0));
    EXPECT_NE(::GetPixel(dc, 30, 5), RGB(200, 0, 0));
    ::ReleaseDC(cover.window(), dc);
    cover.show(nullptr);
    EXPECT_FALSE(::IsWindowVisible(cover.window()));
}

TEST_F(Window, shows_the_tags_and_the_cover_of_what_plays) {
    const Bytes tag = id3Tag(joined({id3Text("TIT2", L"\x4E2D\x6587"), id3Text("TPE1", L"Band"),
                                     id3Picture(3, bmp(3, 2, 0xFF0000))}));
    const std::wstring path = folder.write(L"tagged.wav", WavBytes()
                                                              .format(pcm(44100, 2, 16))
                                                              .chunk("data", Bytes(10 * 176400))
                                                              .chunk("id3 ", tag)
                                                              .bytes());
    const HWND cover = ::FindWindowExW(window->handle(), nullptr, nullptr, L"Cover");
    ASSERT_TRUE(cover);
    queue->clear();
    queue->add(path);
    queue->add(file(signal(10 * 44100)));
    queue->play(0);
    EXPECT_NE(textOf(window->handle()).find(L"Band \x2013 \x4E2D\x6587"), std::wstring::npos);
    EXPECT_TRUE(::IsWindowVisible(cover));
    queue->next();
    ASSERT_TRUE(pumpUntil([this] { return queue->current() == 1 && queue->isPlaying(); }));
    EXPECT_FALSE(::IsWindowVisible(cover));
}

} // namespace
} // namespace corvina::test
