// The graph control in a container: what a Display costs, what it leaves behind, and what judging
// an address costs.

#include "Measure.h"
#include "com/ComPtr.h"
#include "platform/MemoryProbe.h"

#include "Corvina.h"

#include <array>
#include <cmath>
#include <ole2.h>
#include <psapi.h>
#include <string>

namespace {

using namespace corvina;

// The control of the library beside the tests, whether registered or not.
ComPtr<_cAudioGraph> createGraph() {
    wchar_t program[MAX_PATH]{};
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring folder(program, std::wstring_view(program).rfind(L'\\'));
    ComPtr<_cAudioGraph> graph;
    const HMODULE library = ::LoadLibraryW((folder + L"\\..\\Corvina.ocx").c_str());
    if (!library)
        return graph;
    const auto getClass = reinterpret_cast<decltype(&::DllGetClassObject)>(
        reinterpret_cast<void*>(::GetProcAddress(library, "DllGetClassObject")));
    ComPtr<IClassFactory> factory;
    if (SUCCEEDED(getClass(CLSID_cAudioGraph, IID_IClassFactory, factory.putVoid())))
        factory->CreateInstance(nullptr, IID__cAudioGraph, graph.putVoid());
    return graph;
}

// A visible window with the control in it, 400 x 200.
HWND contain(IUnknown* control, ComPtr<IUnknown>& host) {
    const HMODULE atl = ::LoadLibraryW(L"atl.dll");
    const auto init = reinterpret_cast<BOOL(WINAPI*)()>(
        reinterpret_cast<void*>(::GetProcAddress(atl, "AtlAxWinInit")));
    const auto attach = reinterpret_cast<HRESULT(WINAPI*)(IUnknown*, HWND, IUnknown**)>(
        reinterpret_cast<void*>(::GetProcAddress(atl, "AtlAxAttachControl")));
    init();
    const HWND form = ::CreateWindowExW(0, L"STATIC", L"form", WS_POPUP | WS_CLIPCHILDREN, 0, 0,
                                        400, 200, nullptr, nullptr, nullptr, nullptr);
    const HWND window = ::CreateWindowExW(0, L"AtlAxWin", nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 400,
                                          200, form, nullptr, nullptr, nullptr);
    ::ShowWindow(form, SW_SHOWNOACTIVATE);
    attach(control, window, host.put());
    return form;
}

void handleMessages() {
    MSG message;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        ::DispatchMessageW(&message);
}

struct Resources {
    DWORD gdi = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    DWORD user = ::GetGuiResources(::GetCurrentProcess(), GR_USEROBJECTS);
    SIZE_T bytes = [] {
        PROCESS_MEMORY_COUNTERS counters{};
        ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
        return counters.PagefileUsage;
    }();
};

double millisecondsOfDisplay(_cAudioGraph& graph, AudioGraphStyle style) {
    graph.put_GraphStyle(style);
    handleMessages();
    return 1e3 * bench::secondsOf(20, 20, [&] { graph.Display(); });
}

} // namespace

int main() {
    ::OleInitialize(nullptr);
    const auto graph = createGraph();
    if (!graph) {
        std::fputs("graph_control_bench: Corvina.ocx cannot be loaded\n", stderr);
        return 1;
    }
    ComPtr<IUnknown> host;
    const HWND form = contain(graph.get(), host);

    std::array<std::int16_t, 512> samples;
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(20000.0 * std::sin(0.13 * static_cast<double>(i)));
    long zero = 0;
    graph->SetAudioData(reinterpret_cast<LONG>(samples.data()), &zero);

    bench::report("Display, 50 bands, 400 x 200",
                  millisecondsOfDisplay(*graph.get(), FREQUENCY_STYLE), 1.0, "ms", "< 1");
    bench::report("Display, waveform, 400 x 200",
                  millisecondsOfDisplay(*graph.get(), AMPLITUDE_STYLE), 2.0, "ms", "< 1");
    // Within the library's own memory, as the player's samples are.
    bench::report("judging an address",
                  1e6 * bench::secondsOf(20, 1000, [&] { (void)isReadable(samples.data(), 1023); }),
                  1.0, "us", "<= 1");

    const auto displayBothStyles = [&](int times) {
        for (int i = 0; i < times; ++i) {
            graph->put_GraphStyle(i % 2 ? AMPLITUDE_STYLE : FREQUENCY_STYLE);
            graph->Display();
            if (i % 100 == 0)
                handleMessages();
        }
    };
    displayBothStyles(1000);
    const Resources before;
    displayBothStyles(100000);
    const Resources after;
    const auto left = [](const char* name, auto was, auto is, const char* unit) {
        bench::report(name, static_cast<double>(is), static_cast<double>(was), unit, "<= 1.01");
    };
    left("GDI objects after 100000 Displays", before.gdi, after.gdi, "objects");
    left("USER objects after 100000 Displays", before.user, after.user, "objects");
    left("memory after 100000 Displays", before.bytes / 1024, after.bytes / 1024, "KiB");
    ::DestroyWindow(form);
    ::OleUninitialize();
    return 0;
}
