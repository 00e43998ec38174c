// What the members of a control return that containers call seldom, and that it has no use for.

#include "HostSite.h"
#include "Picture.h"
#include "ViewSink.h"
#include "com/TypeLibrary.h"

using namespace corvina;
using namespace corvina::test;

namespace {

// What a result holds before the call, which a member that gives nothing takes away.
template <typename Interface>
Interface* const garbage = reinterpret_cast<Interface*>(0x1234);

class ObjectMembers : public HostedControl {};

TEST_F(ObjectMembers, without_a_meaning_for_the_control_say_so) {
    const auto object = as<IOleObject>();
    EXPECT_EQ(S_OK, object->SetHostNames(L"Host", L"Form"));
    EXPECT_EQ(E_NOTIMPL, object->SetMoniker(OLEWHICHMK_OBJFULL, nullptr));
    EXPECT_EQ(E_NOTIMPL, object->InitFromData(nullptr, TRUE, 0));
    EXPECT_EQ(E_NOTIMPL, object->SetColorScheme(nullptr));
    IMoniker* moniker = garbage<IMoniker>;
    EXPECT_EQ(E_NOTIMPL,
              object->GetMoniker(OLEGETMONIKER_ONLYIFTHERE, OLEWHICHMK_OBJFULL, &moniker));
    EXPECT_EQ(nullptr, moniker);
    IDataObject* data = garbage<IDataObject>;
    EXPECT_EQ(E_NOTIMPL, object->GetClipboardData(0, &data));
    EXPECT_EQ(nullptr, data);
    EXPECT_EQ(S_OK, object->Update());
    EXPECT_EQ(S_OK, object->IsUpToDate());
    EXPECT_EQ(S_OK, as<IOleControl>()->OnMnemonic(nullptr));
    DWORD status = 1;
    EXPECT_EQ(S_OK, object->GetMiscStatus(DVASPECT_ICON, &status));
    EXPECT_EQ(0u, status);
}

TEST_F(ObjectMembers, of_the_active_object_succeed_where_there_is_nothing_to_do) {
    const auto active = as<IOleInPlaceActiveObject>();
    EXPECT_EQ(E_NOTIMPL, active->ContextSensitiveHelp(TRUE));
    EXPECT_EQ(S_OK, active->OnFrameWindowActivate(TRUE));
    EXPECT_EQ(S_OK, active->OnFrameWindowActivate(FALSE));
    EXPECT_EQ(S_OK, active->ResizeBorder(nullptr, nullptr, TRUE));
    EXPECT_EQ(S_OK, active->EnableModeless(FALSE));
    EXPECT_EQ(INPLACE_E_NOTUNDOABLE, as<IOleInPlaceObject>()->ReactivateAndUndo());
}

TEST_F(ObjectMembers, of_the_data_say_what_there_is_and_what_is_not) {
    const auto data = as<IDataObject>();
    FORMATETC format{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF}, other{};
    STGMEDIUM medium{};
    EXPECT_EQ(E_NOTIMPL, data->GetDataHere(&format, &medium));
    EXPECT_EQ(E_NOTIMPL, data->SetData(&format, &medium, FALSE));
    EXPECT_EQ(E_POINTER, data->QueryGetData(nullptr));
    EXPECT_EQ(S_OK, data->QueryGetData(&format));
    EXPECT_EQ(E_POINTER, data->GetCanonicalFormatEtc(&format, nullptr));
    other.ptd = garbage<DVTARGETDEVICE>;
    EXPECT_EQ(E_NOTIMPL, data->GetCanonicalFormatEtc(&format, &other));
    EXPECT_EQ(nullptr, other.ptd);
    EXPECT_EQ(OLE_E_NOCONNECTION, data->DUnadvise(77));
    EXPECT_EQ(E_POINTER, data->EnumDAdvise(nullptr));
}

TEST_F(ObjectMembers, that_enumerate_listeners_give_none_before_there_is_one) {
    ViewSink sink;
    IEnumSTATDATA* none = garbage<IEnumSTATDATA>;
    EXPECT_EQ(S_OK, as<IDataObject>()->EnumDAdvise(&none));
    EXPECT_EQ(nullptr, none);
    none = garbage<IEnumSTATDATA>;
    EXPECT_EQ(S_OK, as<IOleObject>()->EnumAdvise(&none));
    EXPECT_EQ(nullptr, none);
    FORMATETC format{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF};
    DWORD ofData = 0, ofObject = 0;
    EXPECT_EQ(S_OK, as<IDataObject>()->DAdvise(&format, 0, &sink, &ofData));
    EXPECT_EQ(S_OK, as<IOleObject>()->Advise(&sink, &ofObject));
    ComPtr<IEnumSTATDATA> some;
    EXPECT_EQ(S_OK, as<IDataObject>()->EnumDAdvise(some.put()));
    EXPECT_TRUE(some);
    some.reset();
    EXPECT_EQ(S_OK, as<IOleObject>()->EnumAdvise(some.put()));
    EXPECT_TRUE(some);
    some.reset();
    EXPECT_EQ(S_OK, as<IDataObject>()->DUnadvise(ofData));
    EXPECT_EQ(S_OK, as<IOleObject>()->Unadvise(ofObject));
}

TEST_F(ObjectMembers, of_the_view_return_its_extent_and_rectangle) {
    const auto view = as<IViewObjectEx>();
    const SIZEL own = extent();
    SIZEL size{-1, -1};
    EXPECT_EQ(S_OK, view->GetExtent(DVASPECT_CONTENT, -1, nullptr, &size));
    EXPECT_EQ(own.cx, size.cx);
    EXPECT_EQ(own.cy, size.cy);
    EXPECT_EQ(DV_E_DVASPECT, view->GetExtent(DVASPECT_ICON, -1, nullptr, &size));
    for (const DWORD aspect : {DWORD{DVASPECT_CONTENT}, DWORD{DVASPECT_OPAQUE}}) {
        RECTL rect{7, 7, 7, 7};
        EXPECT_EQ(S_OK, view->GetRect(aspect, &rect));
        EXPECT_EQ(0, rect.left);
        EXPECT_EQ(0, rect.top);
        EXPECT_EQ(own.cx, rect.right);
        EXPECT_EQ(own.cy, rect.bottom);
    }
    RECTL rect{7, 7, 7, 7};
    EXPECT_EQ(DV_E_DVASPECT, view->GetRect(DVASPECT_ICON, &rect));
    EXPECT_EQ(0, rect.right);
    DVEXTENTINFO info{sizeof info, DVEXTENT_CONTENT, {}};
    EXPECT_EQ(DV_E_DVASPECT,
              view->GetNaturalExtent(DVASPECT_ICON, -1, nullptr, nullptr, &info, &size));
}

TEST_F(ObjectMembers, of_the_view_have_no_colours_of_their_own_and_do_not_freeze) {
    const auto view = as<IViewObjectEx>();
    LOGPALETTE* colours = garbage<LOGPALETTE>;
    EXPECT_EQ(S_FALSE,
              view->GetColorSet(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, &colours));
    EXPECT_EQ(nullptr, colours);
    DWORD key = 0;
    EXPECT_EQ(E_NOTIMPL, view->Freeze(DVASPECT_CONTENT, -1, nullptr, &key));
    EXPECT_EQ(E_NOTIMPL, view->Unfreeze(key));
}

TEST_F(ObjectMembers, that_listen_to_the_view_are_returned_and_called_for_its_content_alone) {
    const auto view = as<IViewObject>();
    ViewSink sink;
    EXPECT_EQ(S_OK, view->SetAdvise(DVASPECT_ICON, 0, &sink));
    control->base().pictureChanged();
    EXPECT_EQ(0, sink.views);
    EXPECT_EQ(S_OK, view->SetAdvise(DVASPECT_CONTENT | DVASPECT_ICON, ADVF_ONLYONCE, &sink));
    DWORD aspects = 0, flags = 0;
    EXPECT_EQ(S_OK, view->GetAdvise(&aspects, &flags, nullptr));
    EXPECT_EQ(DWORD{DVASPECT_CONTENT | DVASPECT_ICON}, aspects);
    EXPECT_EQ(DWORD{ADVF_ONLYONCE}, flags);
    control->base().pictureChanged();
    EXPECT_EQ(1, sink.views);
    EXPECT_EQ(DWORD{DVASPECT_CONTENT}, sink.aspect);
    EXPECT_EQ(-1, sink.index);
}

TEST_F(ObjectMembers, that_enumerate_formats_and_verbs_fill_every_field) {
    ComPtr<IEnumFORMATETC> formats;
    ASSERT_EQ(S_OK, as<IDataObject>()->EnumFormatEtc(DATADIR_GET, formats.put()));
    for (const auto& [kind, medium] : {std::pair<CLIPFORMAT, DWORD>{CF_ENHMETAFILE, TYMED_ENHMF},
                                       {CF_METAFILEPICT, TYMED_MFPICT}}) {
        FORMATETC format{};
        ASSERT_EQ(S_OK, formats->Next(1, &format, nullptr));
        EXPECT_EQ(kind, format.cfFormat);
        EXPECT_EQ(nullptr, format.ptd);
        EXPECT_EQ(DWORD{DVASPECT_CONTENT}, format.dwAspect);
        EXPECT_EQ(-1, format.lindex);
        EXPECT_EQ(medium, format.tymed);
    }
    ComPtr<IEnumOLEVERB> verbs;
    ASSERT_EQ(S_OK, as<IOleObject>()->EnumVerbs(verbs.put()));
    OLEVERB verb{};
    while (verbs->Next(1, &verb, nullptr) == S_OK) {
        EXPECT_EQ(0u, verb.fuFlags);
        EXPECT_EQ(verb.lpszVerbName
                      ? DWORD{OLEVERBATTRIB_ONCONTAINERMENU | OLEVERBATTRIB_NEVERDIRTIES}
                      : DWORD{0},
                  verb.grfAttribs);
        ::CoTaskMemFree(verb.lpszVerbName);
    }
}

TEST_F(ObjectMembers, of_an_enumerator_say_that_nothing_is_left) {
    ComPtr<IEnumFORMATETC> formats;
    ASSERT_EQ(S_OK, as<IDataObject>()->EnumFormatEtc(DATADIR_GET, formats.put()));
    FORMATETC format{};
    ULONG count = 99;
    EXPECT_EQ(E_POINTER, formats->Next(1, nullptr, &count));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(S_OK, formats->Skip(2));
    count = 99;
    EXPECT_EQ(S_FALSE, formats->Next(1, &format, &count));
    EXPECT_EQ(0u, count);
}

TEST_F(ObjectMembers, of_the_dispatch_refuse_what_is_no_name_or_place) {
    const auto dispatch = as<IDispatch>();
    UINT count = 0;
    EXPECT_EQ(S_OK, dispatch->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    ITypeInfo* info = garbage<ITypeInfo>;
    EXPECT_EQ(DISP_E_BADINDEX, dispatch->GetTypeInfo(1, LOCALE_USER_DEFAULT, &info));
    EXPECT_EQ(nullptr, info);
    wchar_t* none = nullptr;
    DISPID id = 7;
    EXPECT_EQ(E_INVALIDARG, dispatch->GetIDsOfNames(IID_NULL, &none, 0, LOCALE_USER_DEFAULT, &id));
    EXPECT_EQ(E_INVALIDARG, dispatch->GetIDsOfNames(IID_NULL, &none, 1, LOCALE_USER_DEFAULT, &id));
    EXPECT_EQ(DISPID_UNKNOWN, id);
    DISPPARAMS lost{nullptr, nullptr, 1, 0}, unnamed{nullptr, nullptr, 0, 1};
    for (DISPPARAMS* broken : {&lost, &unnamed})
        EXPECT_EQ(E_INVALIDARG, dispatch->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                                 broken, nullptr, nullptr, nullptr));
}

TEST_F(ObjectMembers, called_by_name_leave_no_error_of_an_earlier_call) {
    ComPtr<ICreateErrorInfo> old;
    ASSERT_EQ(S_OK, ::CreateErrorInfo(old.put()));
    ::SetErrorInfo(0, ComPtr<ICreateErrorInfo>(old).query<IErrorInfo>().get());
    DISPPARAMS none{};
    as<IDispatch>()->Invoke(4711, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                            nullptr, nullptr);
    ComPtr<IErrorInfo> left;
    EXPECT_EQ(S_FALSE, ::GetErrorInfo(0, left.put()));
}

TEST_F(ObjectMembers, that_name_the_class_give_its_description) {
    ComPtr<ITypeLib> library;
    EXPECT_EQ(S_OK, loadModuleTypeLibrary(library));
    ComPtr<ITypeInfo> type;
    ASSERT_EQ(S_OK, as<IProvideClassInfo>()->GetClassInfo(type.put()));
    ASSERT_TRUE(type);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, type->GetTypeAttr(&attributes));
    EXPECT_EQ(CLSID_cAudioGraph, attributes->guid);
    type->ReleaseTypeAttr(attributes);
}

// Has the event interface by name, and hands out nothing for it.
class EmptySink final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
        *result = nullptr;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

TEST_F(ObjectMembers, of_a_connection_point_refuse_what_is_no_listener) {
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(S_OK, as<IConnectionPointContainer>()->FindConnectionPoint(DIID___cAudioGraph,
                                                                         point.put()));
    EXPECT_EQ(E_POINTER, point->QueryInterface(IID_IUnknown, nullptr));
    void* none = garbage<void>;
    EXPECT_EQ(E_NOINTERFACE, point->QueryInterface(IID_IDispatch, &none));
    EXPECT_EQ(nullptr, none);
    EmptySink empty;
    DWORD cookie = 7;
    EXPECT_EQ(CONNECT_E_CANNOTCONNECT, point->Advise(&empty, &cookie));
    EXPECT_EQ(0u, cookie);
}

TEST_F(ObjectMembers, of_a_quick_activation_set_the_site_and_the_view_listener) {
    as<IOleObject>()->SetClientSite(nullptr);
    ViewSink sink;
    QACONTAINER host{};
    host.cbSize = sizeof host;
    host.pClientSite = site.get();
    host.pAdviseSink = reinterpret_cast<IAdviseSinkEx*>(&sink);
    QACONTROL filled{};
    filled.cbSize = sizeof filled;
    ASSERT_EQ(S_OK, as<IQuickActivate>()->QuickActivate(&host, &filled));
    EXPECT_EQ(DWORD{VIEWSTATUS_OPAQUE}, filled.dwViewStatus);
    ComPtr<IOleClientSite> client;
    EXPECT_EQ(S_OK, as<IOleObject>()->GetClientSite(client.put()));
    EXPECT_EQ(static_cast<IOleClientSite*>(site.get()), client.get());
    DWORD aspects = 0, flags = 7;
    EXPECT_EQ(S_OK, as<IViewObject>()->GetAdvise(&aspects, &flags, nullptr));
    EXPECT_EQ(DWORD{DVASPECT_CONTENT}, aspects);
    EXPECT_EQ(0u, flags);
    control->base().pictureChanged();
    EXPECT_EQ(1, sink.views);
    as<IViewObject>()->SetAdvise(0, 0, nullptr);
}

} // namespace
