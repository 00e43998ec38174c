// Controls as part of an object of the host, which adds interfaces of its own to them.

#include "ReenteringContainer.h"
#include "Support.h"

using namespace corvina;
using namespace corvina::test;

namespace {

// An object of the host around a control. It has IServiceProvider itself; the rest is the
// control's.
class OuterObject final : public IServiceProvider {
public:
    explicit OuterObject(REFCLSID clsid) {
        EXPECT_EQ(S_OK, ::CoCreateInstance(clsid, this, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                           inner.putVoid()));
    }

    ComPtr<IUnknown> inner;
    ULONG references = 1;
    int counted = 0; // how often anybody took a reference

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        if (iid != IID_IUnknown && iid != IID_IServiceProvider)
            return inner->QueryInterface(iid, result);
        *result = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        ++counted;
        return ++references;
    }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE QueryService(REFGUID, REFIID, void**) override { return E_NOTIMPL; }
};

class Aggregation : public ApartmentTest, public ::testing::WithParamInterface<CLSID> {};

TEST_P(Aggregation, every_interface_belongs_to_the_outer_object) {
    OuterObject outer(GetParam());
    ASSERT_TRUE(outer.inner);
    for (const IID& iid : {IID_IDispatch, IID_IOleObject, IID_IOleControl, IID_IOleInPlaceObject,
                           IID_IViewObject2, IID_IPersistStreamInit, IID_IProvideClassInfo2,
                           IID_IConnectionPointContainer, IID_IQuickActivate}) {
        ComPtr<IUnknown> part, identity;
        ComPtr<IServiceProvider> services;
        ASSERT_EQ(S_OK, outer.QueryInterface(iid, part.putVoid()));
        EXPECT_EQ(2u, outer.references);
        EXPECT_EQ(S_OK, part->QueryInterface(IID_IUnknown, identity.putVoid()));
        EXPECT_EQ(static_cast<IUnknown*>(&outer), identity.get());
        EXPECT_EQ(S_OK, part->QueryInterface(IID_IServiceProvider, services.putVoid()));
    }
    EXPECT_EQ(1u, outer.references);
}

TEST_P(Aggregation, the_inner_unknown_is_counted_by_itself) {
    OuterObject outer(GetParam());
    ComPtr<IUnknown> again;
    EXPECT_EQ(S_OK, outer.inner->QueryInterface(IID_IUnknown, again.putVoid()));
    EXPECT_EQ(outer.inner.get(), again.get());
    EXPECT_EQ(1u, outer.references);
    EXPECT_EQ(3u, outer.inner->AddRef());
    EXPECT_EQ(2u, outer.inner->Release());
}

// It may be gone except for its destructor, which releases the control.
TEST_P(Aggregation, the_outer_object_is_not_counted_by_a_control_that_is_destroyed) {
    OuterObject outer(GetParam());
    ASSERT_TRUE(outer.inner);
    outer.counted = 0;
    outer.inner.reset();
    EXPECT_EQ(0, outer.counted);
    EXPECT_EQ(1u, outer.references);
}

TEST_P(Aggregation, a_connection_point_leads_back_to_the_outer_object) {
    OuterObject outer(GetParam());
    ComPtr<IConnectionPointContainer> container, back;
    ComPtr<IConnectionPoint> point;
    outer.QueryInterface(IID_IConnectionPointContainer, container.putVoid());
    EXPECT_EQ(S_OK, container->FindConnectionPoint(IID_IPropertyNotifySink, point.put()));
    EXPECT_EQ(S_OK, point->GetConnectionPointContainer(back.put()));
    ComPtr<IUnknown> identity;
    EXPECT_EQ(S_OK, back->QueryInterface(IID_IUnknown, identity.putVoid()));
    EXPECT_EQ(static_cast<IUnknown*>(&outer), identity.get());
}

TEST_P(Aggregation, works_in_a_container_and_leaves_nothing_there) {
    const HiddenWindow window;
    const auto site = makeCom<ReenteringSite>(window.handle(), [](auto&) {});
    {
        OuterObject outer(GetParam());
        ComPtr<IOleObject> object;
        outer.QueryInterface(IID_IOleObject, object.putVoid());
        EXPECT_EQ(S_OK, object->SetClientSite(site.get()));
        EXPECT_EQ(S_OK,
                  object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, site.get(), 0, nullptr, nullptr));
        EXPECT_NE(nullptr, ::GetWindow(window.handle(), GW_CHILD));
        object.reset();
        EXPECT_EQ(1u, outer.references);
        // The outer object goes while the control is active; it is not counted any more then.
        outer.inner.reset();
        EXPECT_EQ(1u, outer.references);
    }
    EXPECT_EQ(nullptr, ::GetWindow(window.handle(), GW_CHILD));
    EXPECT_EQ(1u, site->references());
}

INSTANTIATE_TEST_SUITE_P(OfBothControls, Aggregation,
                         ::testing::Values(CLSID_cPlayer, CLSID_cAudioGraph));

} // namespace
