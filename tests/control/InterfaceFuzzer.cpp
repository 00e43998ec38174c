#include "InterfaceFuzzer.h"

namespace corvina::test {
namespace {

constexpr DISPID about = -552; // shows a box that waits for somebody
constexpr LONG aboutVerb = 1;

} // namespace

InterfaceFuzzer::InterfaceFuzzer(REFCLSID clsid, std::uint32_t seed)
    : random_(seed), site_(makeCom<ReenteringSite>(window_.handle(), [](auto&) {})),
      control_(create<IDispatch>(clsid)) {}

InterfaceFuzzer::~InterfaceFuzzer() {
    if (const auto object = as<IOleObject>())
        object->SetClientSite(nullptr);
    control_.reset();
    EXPECT_EQ(1u, site_->references());
}

void InterfaceFuzzer::call() {
    using Call = void (InterfaceFuzzer::*)();
    constexpr Call calls[] = {&InterfaceFuzzer::callObject,  &InterfaceFuzzer::callInPlace,
                              &InterfaceFuzzer::callControl, &InterfaceFuzzer::callView,
                              &InterfaceFuzzer::callData,    &InterfaceFuzzer::callPersist,
                              &InterfaceFuzzer::callMembers, &InterfaceFuzzer::callConnections,
                              &InterfaceFuzzer::callMembers, &InterfaceFuzzer::callDispatch,
                              &InterfaceFuzzer::sendMessage, &InterfaceFuzzer::callQuickActivate};
    latest = static_cast<int>(random_.below(std::size(calls)));
    const Call chosen = calls[latest];
    (this->*chosen)();
}

void InterfaceFuzzer::callObject() {
    const auto object = as<IOleObject>();
    SIZEL size{random_.number(), random_.number()};
    DWORD number = 0;
    LONG verb = random_.oneIn(2) ? -static_cast<LONG>(random_.below(8)) : random_.number();
    ComPtr<IEnumOLEVERB> verbs;
    ComPtr<IMoniker> moniker;
    switch (random_.below(11)) {
    case 0:
        object->SetClientSite(random_.oneIn(3) ? nullptr : site_.get());
        break;
    case 1:
        object->DoVerb(verb == aboutVerb ? 0 : verb, nullptr, nullptr, random_.number(), nullptr,
                       nullptr);
        break;
    case 2:
        object->SetExtent(random_.oneIn(4) ? 7u : DWORD{DVASPECT_CONTENT}, &size);
        break;
    case 3:
        object->GetExtent(static_cast<DWORD>(random_.number()), &size);
        break;
    case 4:
        object->Close(random_.below(4));
        break;
    case 5:
        object->Advise(nullptr, &number);
        break;
    case 6:
        object->Unadvise(static_cast<DWORD>(random_.number()));
        break;
    case 7:
        object->EnumVerbs(random_.oneIn(3) ? nullptr : verbs.put());
        break;
    case 8:
        object->GetMiscStatus(static_cast<DWORD>(random_.number()), &number);
        break;
    case 9:
        object->GetMoniker(1, 1, moniker.put());
        break;
    default:
        object->SetHostNames(nullptr, nullptr);
        break;
    }
}

void InterfaceFuzzer::callInPlace() {
    const auto object = as<IOleInPlaceObject>();
    const auto active = as<IOleInPlaceActiveObject>();
    const RECT position = random_.rect(), clip = random_.rect();
    MSG message{own_, WM_KEYDOWN, static_cast<WPARAM>(random_.below(256)), 0, 0, {}};
    switch (random_.below(8)) {
    case 0:
        object->InPlaceDeactivate();
        break;
    case 1:
        object->UIDeactivate();
        break;
    case 2:
        object->SetObjectRects(random_.oneIn(5) ? nullptr : &position,
                               random_.oneIn(3) ? nullptr : &clip);
        break;
    case 3:
        object->GetWindow(random_.oneIn(4) ? nullptr : &own_);
        break;
    case 4:
        active->TranslateAccelerator(random_.oneIn(4) ? nullptr : &message);
        break;
    case 5:
        active->OnDocWindowActivate(random_.oneIn(2));
        break;
    case 6:
        active->ResizeBorder(&position, nullptr, random_.oneIn(2));
        break;
    default:
        object->ReactivateAndUndo();
        break;
    }
}

void InterfaceFuzzer::callControl() {
    const auto control = as<IOleControl>();
    CONTROLINFO info{};
    switch (random_.below(4)) {
    case 0:
        control->FreezeEvents(random_.oneIn(2));
        break;
    case 1:
        control->OnAmbientPropertyChange(random_.oneIn(2) ? -709 : random_.number());
        break;
    case 2:
        control->OnMnemonic(nullptr);
        break;
    default:
        control->GetControlInfo(random_.oneIn(3) ? nullptr : &info);
        break;
    }
}

void InterfaceFuzzer::callView() {
    const auto view = as<IViewObjectEx>();
    const RECT rect = random_.rect();
    const RECTL bounds{rect.left, rect.top, rect.right, rect.bottom};
    DWORD number = 0;
    SIZEL size{};
    DVEXTENTINFO extent{sizeof extent, random_.below(3), {random_.number(), random_.number()}};
    switch (random_.below(6)) {
    case 0:
    case 1:
        view->Draw(random_.oneIn(5) ? 3u : DWORD{DVASPECT_CONTENT}, random_.number(), nullptr,
                   nullptr, nullptr, random_.oneIn(6) ? nullptr : picture_.dc(),
                   random_.oneIn(6) ? nullptr : &bounds, nullptr, nullptr, 0);
        break;
    case 2:
        view->QueryHitPoint(DVASPECT_CONTENT, &rect, {random_.number(), 5}, 0, &number);
        break;
    case 3:
        view->SetAdvise(random_.below(9), random_.below(70), nullptr);
        break;
    case 4:
        view->GetNaturalExtent(DVASPECT_CONTENT, -1, nullptr, nullptr, &extent, &size);
        break;
    default:
        view->GetExtent(random_.below(9), 0, nullptr, random_.oneIn(3) ? nullptr : &size);
        break;
    }
}

void InterfaceFuzzer::callData() {
    const auto data = as<IDataObject>();
    if (!data)
        return;
    FORMATETC format{static_cast<CLIPFORMAT>(random_.oneIn(2) ? CF_ENHMETAFILE : random_.below(20)),
                     nullptr, random_.oneIn(4) ? 9u : DWORD{DVASPECT_CONTENT}, -1,
                     random_.below(256)};
    STGMEDIUM medium{};
    if (SUCCEEDED(data->GetData(random_.oneIn(6) ? nullptr : &format, &medium)))
        ::ReleaseStgMedium(&medium);
    DWORD connection = 0;
    data->DAdvise(&format, 0, nullptr, &connection);
    data->DUnadvise(static_cast<DWORD>(random_.number()));
}

void InterfaceFuzzer::callPersist() {
    const auto stream = memoryStream();
    switch (random_.below(5)) {
    case 0:
        for (std::uint32_t left = random_.below(20); left > 0; --left) {
            const LONG number = random_.number();
            stream->Write(random_.oneIn(8) ? static_cast<const void*>("Crv1") : &number, 4,
                          nullptr);
        }
        rewind(stream);
        as<IPersistStreamInit>()->Load(random_.oneIn(8) ? nullptr : stream.get());
        break;
    case 1:
        as<IPersistStreamInit>()->Save(stream.get(), random_.oneIn(2));
        rewind(stream);
        EXPECT_EQ(S_OK, as<IPersistStreamInit>()->Load(stream.get()));
        break;
    case 2:
        as<IPersistStreamInit>()->InitNew();
        break;
    case 3: {
        MemoryPropertyBag bag;
        for (const wchar_t* name : {L"Bands", L"GraphStyle", L"_ExtentX", L"_ExtentY"})
            bag.put(name, random_.variant());
        as<IPersistPropertyBag>()->Load(random_.oneIn(8) ? nullptr : &bag, nullptr);
        break;
    }
    default:
        as<IPersistStorage>()->Load(static_cast<IStorage*>(nullptr));
        break;
    }
}

void InterfaceFuzzer::callConnections() {
    ComPtr<IConnectionPoint> point;
    ComPtr<IEnumConnections> connections;
    const auto container = as<IConnectionPointContainer>();
    container->FindConnectionPoint(random_.oneIn(2) ? IID_IPropertyNotifySink : DIID___cPlayer,
                                   random_.oneIn(8) ? nullptr : point.put());
    if (!point)
        return;
    DWORD cookie = 0;
    point->Advise(random_.oneIn(2) ? nullptr : static_cast<IDispatch*>(site_.get()), &cookie);
    point->EnumConnections(connections.put());
    point->Unadvise(random_.oneIn(4) ? static_cast<DWORD>(random_.number()) : cookie);
}

void InterfaceFuzzer::callDispatch() {
    std::vector<Variant> arguments;
    for (std::uint32_t left = random_.below(5); left > 0; --left)
        arguments.push_back(random_.variant());
    std::vector<VARIANT> values(arguments.begin(), arguments.end());
    std::vector<DISPID> names{random_.number(), DISPID_PROPERTYPUT, 0, 1};
    DISPPARAMS parameters{random_.oneIn(12) ? nullptr : values.data(), names.data(),
                          static_cast<UINT>(values.size()),
                          random_.oneIn(3) ? random_.below(3) : 0};
    const DISPID id = random_.oneIn(8) ? random_.number() : static_cast<DISPID>(random_.below(53));
    Variant result;
    EXCEPINFO exception{};
    UINT bad = 0;
    if (id == about)
        return;
    control_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, static_cast<WORD>(random_.below(16)),
                     random_.oneIn(12) ? nullptr : &parameters,
                     random_.oneIn(2) ? &result : nullptr, random_.oneIn(2) ? &exception : nullptr,
                     &bad);
    for (const BSTR each :
         {exception.bstrSource, exception.bstrDescription, exception.bstrHelpFile})
        ::SysFreeString(each);
}

void InterfaceFuzzer::callQuickActivate() {
    QACONTAINER container{};
    QACONTROL control{};
    container.cbSize = random_.oneIn(2) ? sizeof container : random_.below(100);
    control.cbSize = random_.oneIn(2) ? sizeof control : random_.below(100);
    container.pClientSite = random_.oneIn(2) ? site_.get() : nullptr;
    as<IQuickActivate>()->QuickActivate(random_.oneIn(8) ? nullptr : &container,
                                        random_.oneIn(8) ? nullptr : &control);
}

void InterfaceFuzzer::sendMessage() {
    constexpr UINT messages[] = {WM_PAINT,     WM_SIZE,       WM_LBUTTONDOWN,  WM_SETFOCUS,
                                 WM_KILLFOCUS, WM_ERASEBKGND, WM_KEYDOWN,      WM_TIMER,
                                 WM_MOUSEMOVE, WM_SHOWWINDOW, WM_STYLECHANGED, WM_APP};
    if (!::IsWindow(own_))
        return;
    if (random_.oneIn(20))
        ::DestroyWindow(own_);
    else
        ::SendMessageW(own_, messages[random_.below(std::size(messages))],
                       static_cast<WPARAM>(random_.below(100)), 0);
}

} // namespace corvina::test
