// What a container says about itself to a control: design or run time, background, units.

#include "FormSite.h"
#include "Picture.h"
#include "Support.h"

using namespace corvina;
using namespace corvina::test;

namespace {

// The player in a form, drawn into a bitmap of 32 x 32 pixels.
class Ambient : public ApartmentTest {
protected:
    static constexpr int side = 32;

    void SetUp() override {
        ApartmentTest::SetUp();
        object = create<IOleObject>(CLSID_cPlayer);
        object->SetClientSite(form.get());
    }
    void TearDown() override {
        object->SetClientSite(nullptr);
        object.reset();
        form.reset();
        ApartmentTest::TearDown();
    }

    // How many pixels are not of the form's background.
    int drawnPixels(COLORREF background = RGB(10, 20, 30)) {
        const RECTL bounds{0, 0, side, side};
        EXPECT_EQ(S_OK,
                  object.query<IViewObject>()->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr,
                                                    picture.dc(), &bounds, nullptr, nullptr, 0));
        int count = 0;
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                count += picture.at(x, y) != background;
        return count;
    }

    ComPtr<FormSite> form = makeCom<FormSite>();
    ComPtr<IOleObject> object;
    const Picture picture{{side, side}};
};

TEST_F(Ambient, at_run_time_the_player_shows_only_the_containers_background) {
    EXPECT_EQ(0, drawnPixels());
}

TEST_F(Ambient, the_containers_background_may_be_a_colour_of_the_system) {
    form->background = 0x8000000F;
    for (const VARTYPE type : {VT_UI4, VT_R8}) {
        form->backgroundType = type;
        EXPECT_EQ(0, drawnPixels(::GetSysColor(COLOR_BTNFACE))) << type;
    }
}

TEST_F(Ambient, at_design_time_the_player_shows_a_glyph) {
    form->designing = true;
    EXPECT_GT(drawnPixels(), side);
}

TEST_F(Ambient, the_player_has_512_by_512_of_its_containers_own_units) {
    SIZEL size{};
    EXPECT_EQ(S_OK, object->GetExtent(DVASPECT_CONTENT, &size));
    EXPECT_EQ(512 * 2540 / 1440, size.cx);
    EXPECT_EQ(512 * 2540 / 1440, size.cy);
}

TEST_F(Ambient, every_key_is_left_to_the_container) {
    const auto active = object.query<IOleInPlaceActiveObject>();
    MSG key{nullptr, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(S_OK, active->TranslateAccelerator(&key));
    key.wParam = VK_F12;
    EXPECT_EQ(S_FALSE, active->TranslateAccelerator(&key));
    EXPECT_EQ((std::vector<WPARAM>{VK_TAB, VK_F12}), form->keys);
    object->SetClientSite(nullptr);
    EXPECT_EQ(S_FALSE, active->TranslateAccelerator(&key));
}

TEST_F(Ambient, the_properties_verb_says_that_there_are_no_pages) {
    EXPECT_EQ(OLEOBJ_S_CANNOT_DOVERB_NOW,
              object->DoVerb(OLEIVERB_PROPERTIES, nullptr, form.get(), 0, nullptr, nullptr));
}

} // namespace
