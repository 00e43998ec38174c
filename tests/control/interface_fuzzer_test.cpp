// Thousands of hostile calls in random order: no crash, nothing leaked, and the control still
// works.
//
// The environment variables CORVINA_FUZZ_SEQUENCES and CORVINA_FUZZ_SEED ask for more sequences, or
// for those of another night.

#include "InterfaceFuzzer.h"

#include <cstdio>
#include <cstdlib>

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr int callsOfSequence = 50;

std::uint32_t fromEnvironment(const char* name, std::uint32_t otherwise) {
    const char* text = std::getenv(name);
    return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

std::uint32_t currentSeed = 0;

// Says which calls led to a crash before the process ends.
LONG WINAPI reportCrash(EXCEPTION_POINTERS* crash) {
    std::fprintf(stderr, "crash %08lX after seed %u, group %d\n",
                 static_cast<unsigned long>(crash->ExceptionRecord->ExceptionCode),
                 static_cast<unsigned>(currentSeed), InterfaceFuzzer::latest);
    return EXCEPTION_CONTINUE_SEARCH;
}

class Fuzzed : public ApartmentTest {};

TEST_F(Fuzzed, controls_survive_every_sequence_and_leave_nothing) {
    ::SetUnhandledExceptionFilter(&reportCrash);
    const std::uint32_t first = fromEnvironment("CORVINA_FUZZ_SEED", 1);
    const std::uint32_t count = fromEnvironment("CORVINA_FUZZ_SEQUENCES", 1000);
    for (std::uint32_t seed = first; seed < first + count; ++seed) {
        SCOPED_TRACE(seed);
        currentSeed = seed;
        InterfaceFuzzer fuzzer(seed % 2 ? CLSID_cPlayer : CLSID_cAudioGraph, seed);
        for (int i = 0; i < callsOfSequence; ++i)
            fuzzer.call();
        dispatchWaitingMessages();
    }
    ::SetUnhandledExceptionFilter(nullptr);
    const auto graph = create<_cAudioGraph>(CLSID_cAudioGraph);
    EXPECT_EQ(S_OK, graph->Display());
    const auto player = create<_cPlayer>(CLSID_cPlayer);
    long number = -1;
    EXPECT_EQ(S_OK, player->Init(&number));
    EXPECT_EQ(S_OK, player->DeInit(&number));
}

// After every object is gone the library could be unloaded, so none was leaked.
TEST_F(Fuzzed, controls_hold_the_library_no_longer) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        InterfaceFuzzer fuzzer(seed % 2 ? CLSID_cPlayer : CLSID_cAudioGraph, seed);
        for (int i = 0; i < callsOfSequence; ++i)
            fuzzer.call();
    }
    dispatchWaitingMessages();
    const HMODULE library = ::GetModuleHandleW(L"Corvina.ocx");
    ASSERT_NE(nullptr, library);
    const auto canUnload = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(::GetProcAddress(library, "DllCanUnloadNow")));
    EXPECT_EQ(S_OK, canUnload());
}

} // namespace
