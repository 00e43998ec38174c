// The main program of tests of what is heard: registers the control that was just built, as setup
// programs do, and enters an apartment.

#include <gtest/gtest.h>

#include <objbase.h>
#include <windows.h>

#include <cstdio>

namespace {

// Relative to the folder in which tests run.
constexpr const wchar_t* controlFile = CORVINA_DIST L"/Corvina.ocx";

bool registerControl() {
    wchar_t path[MAX_PATH];
    if (::GetFullPathNameW(controlFile, MAX_PATH, path, nullptr) == 0)
        return false;
    const HMODULE module = ::LoadLibraryW(path);
    const auto entry = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
        reinterpret_cast<void*>(::GetProcAddress(module, "DllRegisterServer")));
    const bool done = entry && SUCCEEDED(entry());
    ::FreeLibrary(module);
    return done;
}

} // namespace

int main(int count, char** arguments) {
    ::testing::InitGoogleTest(&count, arguments);
    ::CoInitialize(nullptr);
    if (!registerControl()) {
        std::fputs("dist/Corvina.ocx could not be registered\n", stderr);
        return 1;
    }
    const int result = RUN_ALL_TESTS();
    ::CoUninitialize();
    return result;
}
