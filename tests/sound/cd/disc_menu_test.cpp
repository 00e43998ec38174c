// The window's menu of drives and tracks over the virtual drives.

#include "DriveSoundTest.h"
#include "PlayQueue.h"
#include "window/Commands.h"
#include "window/PlayerWindow.h"

#include <memory>

namespace corvina::test {
namespace {

class DiscsInMenu : public DriveSoundTest {
protected:
    void SetUp() override {
        DriveSoundTest::SetUp();
        if (IsSkipped())
            return;
        options.pictureFile = L"unused"; // needs no window manager and leaves no settings
        queue = std::make_unique<app::PlayQueue>(
            app::QueueHandlers{[this] { window->onStarted(); },
                               [this] { window->onEnded(); },
                               [this](const std::wstring& words) { window->onFailed(words); },
                               {}});
        window = std::make_unique<app::PlayerWindow>(*queue, options);
    }

    // The menu as it is when it has been opened.
    [[nodiscard]] HMENU opened() const {
        const HMENU menu = ::GetSubMenu(::GetMenu(window->handle()), POS_DISCS);
        ::SendMessageW(window->handle(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), 0);
        return menu;
    }
    [[nodiscard]] static std::vector<std::wstring> lines(HMENU menu) {
        std::vector<std::wstring> texts;
        for (int place = 0; place < ::GetMenuItemCount(menu); ++place) {
            wchar_t text[100] = L"";
            ::GetMenuStringW(menu, static_cast<UINT>(place), text, 100, MF_BYPOSITION);
            texts.emplace_back(text);
        }
        return texts;
    }
    void choose(HMENU menu, int place) const {
        ::SendMessageW(window->handle(), WM_COMMAND, ::GetMenuItemID(menu, place), 0);
    }

    app::Options options;
    std::unique_ptr<app::PlayQueue> queue;
    std::unique_ptr<app::PlayerWindow> window;
};

constexpr int firstTrack = 2; // behind "Whole disc" and a line

TEST_F(DiscsInMenu, are_listed_with_their_track_files) {
    const DiscImage disc({{true, 300}, {false, 300}, {true, 300}});
    d->load(disc);
    const HMENU menu = opened();
    EXPECT_EQ(lines(menu), (std::vector<std::wstring>{L"D:", L"E: no audio disc"}));
    EXPECT_EQ(lines(::GetSubMenu(menu, 0)),
              (std::vector<std::wstring>{L"&Whole disc", L"", L"Track01", L"Track02", L"Track03"}));
}

TEST_F(DiscsInMenu, come_and_go_between_two_openings) {
    EXPECT_EQ(lines(opened()),
              (std::vector<std::wstring>{L"D: no audio disc", L"E: no audio disc"}));
    const DiscImage disc({{true, 300}});
    e->load(disc);
    EXPECT_EQ(lines(opened()), (std::vector<std::wstring>{L"D: no audio disc", L"E:"}));
    e->set({});
}

TEST_F(DiscsInMenu, play_a_chosen_track) {
    const DiscImage disc({{true, 300}, {true, 60 * 75}});
    d->load(disc);
    choose(::GetSubMenu(opened(), 0), firstTrack + 1);
    EXPECT_EQ(queue->tracks(), std::vector<app::Track>{d->trackPath(2)});
    EXPECT_TRUE(queue->isPlaying());
    EXPECT_EQ(queue->player().format().seconds, 60.0);
}

TEST_F(DiscsInMenu, play_whole_in_the_order_of_their_tracks) {
    const DiscImage disc({{true, 300}, {true, 300}, {true, 300}});
    d->load(disc);
    choose(::GetSubMenu(opened(), 0), 0);
    EXPECT_EQ(queue->tracks(),
              (std::vector<app::Track>{d->trackPath(1), d->trackPath(2), d->trackPath(3)}));
    EXPECT_TRUE(queue->isPlaying());
}

TEST_F(DiscsInMenu, respond_to_no_command_that_is_not_theirs) {
    ASSERT_NE(opened(), nullptr);
    for (const WPARAM command : {0, 999, CMD_DISCS, CMD_DISCS + 99, CMD_DISCS + 2600, 0xffff})
        ::SendMessageW(window->handle(), WM_COMMAND, command, 0);
    EXPECT_TRUE(queue->tracks().empty());
}

} // namespace
} // namespace corvina::test
