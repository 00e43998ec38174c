#include "Support.h"

#include <algorithm>
#include <cstring>

namespace corvina::test {

namespace {

// Reads what a process prints until the process has ended, which it must within a minute. The end
// of the pipe is no sign: whatever the process started may still hold it, the desktop for one.
bool readUntilEnd(HANDLE process, HANDLE pipe, std::string* output) {
    const ULONGLONG deadline = ::GetTickCount64() + 60000;
    for (bool ended = false;;) {
        DWORD waiting = 0;
        while (::PeekNamedPipe(pipe, nullptr, 0, nullptr, &waiting, nullptr) && waiting > 0) {
            char buffer[4096];
            DWORD got = 0;
            if (!::ReadFile(pipe, buffer, std::min<DWORD>(waiting, sizeof buffer), &got, nullptr))
                break;
            if (output)
                output->append(buffer, got);
        }
        if (ended || ::GetTickCount64() > deadline)
            return ended;
        ended = ::WaitForSingleObject(process, 10) == WAIT_OBJECT_0;
    }
}

// Every program that uses this file runs its tests over the registered library.
[[maybe_unused]] const auto* const registered =
    ::testing::AddGlobalTestEnvironment(new RegisteredLibrary);

} // namespace

std::wstring libraryPath() {
    wchar_t program[MAX_PATH]{}, path[MAX_PATH]{};
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring folder(program, std::wstring_view(program).rfind(L'\\'));
    ::GetFullPathNameW((folder + L"/" CORVINA_DIST L"/Corvina.ocx").c_str(), MAX_PATH, path,
                       nullptr);
    return path;
}

int run(const std::wstring& commandLine, std::string* output) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!::CreatePipe(&readEnd, &writeEnd, &inherited, 1 << 20))
        return -1;
    ::SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = ::GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = startup.hStdError = writeEnd;
    PROCESS_INFORMATION process{};
    std::wstring line = commandLine;
    const BOOL started = ::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                          nullptr, &startup, &process);
    ::CloseHandle(writeEnd);
    DWORD code = static_cast<DWORD>(-1);
    if (started) {
        if (readUntilEnd(process.hProcess, readEnd, output))
            ::GetExitCodeProcess(process.hProcess, &code);
        ::CloseHandle(process.hThread);
        ::CloseHandle(process.hProcess);
    }
    ::CloseHandle(readEnd);
    return static_cast<int>(code);
}

int regsvr32(const std::wstring& options) {
    return run(L"regsvr32 " + options + L" \"" + libraryPath() + L"\"");
}

HRESULT callByName(IDispatch* object, const wchar_t* name, WORD flags,
                   std::vector<Variant> arguments, VARIANT* result, EXCEPINFO* exception) {
    auto* text = const_cast<wchar_t*>(name);
    DISPID id = DISPID_UNKNOWN;
    if (const HRESULT found = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
        FAILED(found))
        return found;
    std::vector<VARIANT> lastFirst(arguments.rbegin(), arguments.rend());
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{lastFirst.data(), nullptr, static_cast<UINT>(lastFirst.size()), 0};
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
        parameters.rgdispidNamedArgs = &put;
        parameters.cNamedArgs = 1;
    }
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, exception,
                          nullptr);
}

HRESULT EventSink::connect(IUnknown* source, REFIID events) {
    ComPtr<IConnectionPointContainer> container;
    if (const HRESULT found =
            source->QueryInterface(IID_IConnectionPointContainer, container.putVoid());
        FAILED(found))
        return found;
    if (const HRESULT found = container->FindConnectionPoint(events, point_.put()); FAILED(found))
        return found;
    return point_->Advise(this, &cookie_);
}

void EventSink::disconnect() {
    if (point_)
        point_->Unadvise(cookie_);
    point_.reset();
}

HRESULT EventSink::QueryInterface(REFIID iid, void** result) {
    *result = iid == IID_IUnknown || iid == IID_IDispatch || (events_ != IID_NULL && iid == events_)
                  ? this
                  : nullptr;
    return *result ? S_OK : E_NOINTERFACE;
}

HRESULT EventSink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                          EXCEPINFO*, UINT*) {
    Event event{id, {}, {}};
    for (UINT i = parameters->cArgs; i-- > 0;) {
        event.types.push_back(parameters->rgvarg[i].vt);
        ::VariantCopyInd(&event.arguments.emplace_back(), &parameters->rgvarg[i]);
    }
    received.push_back(event);
    if (handler)
        handler(event);
    return S_OK;
}

namespace {

template <typename Function>
Function procedure(HMODULE library, const char* name) {
    const FARPROC found = ::GetProcAddress(library, name);
    Function result;
    std::memcpy(&result, &found, sizeof result);
    return result;
}

// The exports of atl.dll that host a control.
struct Atl {
    HMODULE library = ::LoadLibraryW(L"atl.dll");
    BOOL(WINAPI* init)
    () = reinterpret_cast<BOOL(WINAPI*)()>(::GetProcAddress(library, "AtlAxWinInit"));
    HRESULT(WINAPI* attach)
    (IUnknown*, HWND,
     IUnknown**) = procedure<HRESULT(WINAPI*)(IUnknown*, HWND, IUnknown**)>(library,
                                                                            "AtlAxAttachControl");
};

const Atl& atl() {
    static const Atl instance;
    static const BOOL ready = instance.init();
    EXPECT_TRUE(ready);
    return instance;
}

} // namespace

Container::Container() {
    atl();
    form_ = ::CreateWindowExW(0, L"STATIC", L"form", WS_POPUP | WS_CLIPCHILDREN, 0, 0, 800, 700,
                              nullptr, nullptr, nullptr, nullptr);
    window_ = ::CreateWindowExW(0, L"AtlAxWin", nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0,
                                0, 300, 200, form_, nullptr, nullptr, nullptr);
    // Without activation: if no window manager runs the platform waits seconds for one.
    ::ShowWindow(form_, SW_SHOWNOACTIVATE);
}

HRESULT Container::attach(IUnknown* control) {
    return atl().attach(control, window_, host_.put());
}

void Container::destroy() noexcept {
    if (const HWND form = std::exchange(form_, nullptr))
        ::DestroyWindow(form);
    host_.reset();
}

ComPtr<IOleInPlaceSite> Container::siteOf(IUnknown* control) {
    const ComPtr<IUnknown> holder(control);
    const auto object = holder.query<IOleObject>();
    ComPtr<IOleClientSite> site;
    if (object)
        object->GetClientSite(site.put());
    return site.query<IOleInPlaceSite>();
}

} // namespace corvina::test
