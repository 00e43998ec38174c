// Thousands of hostile calls in random order: no crash, nothing leaked, and after each hundred
// sequences a playback still comes to its end.
//
// The environment variables CORVINA_FUZZ_SEQUENCES and CORVINA_FUZZ_SEED ask for more sequences, or
// for those of another night; tools/fuzz-interfaces sets them.

#include "InterfaceFuzzer.h"
#include "support/ProcessObjects.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>

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

// What the process holds after some sequences.
struct Held {
    long handles = countKernelHandles();
    long windows = countWindows();
    long heapBytes = static_cast<long>(countHeapBytes());
};

class Fuzzed : public ApartmentTest {
protected:
    // A player plays a file to its end.
    void expectPlaybackWorks() {
        const auto player = create<_cPlayer>(CLSID_cPlayer);
        long number = -1;
        ASSERT_EQ(S_OK, player->Init(&number));
        EventSink sink(DIID___cPlayer);
        ASSERT_EQ(S_OK, sink.connect(player.get(), DIID___cPlayer));
        ASSERT_EQ(S_OK, player->PlayStart(Bstr(file_).get(), -1, 0, &number));
        ASSERT_EQ(0, number);
        const auto isDone = [&] {
            VARIANT_BOOL done = VARIANT_FALSE;
            return player->DonePlay(&done) == S_OK && done != VARIANT_FALSE;
        };
        EXPECT_TRUE(pumpUntil(isDone, std::chrono::seconds(20)));
        EXPECT_FALSE(sink.received.empty());
        EXPECT_EQ(S_OK, player->DeInit(&number));
        EXPECT_EQ(0, number);
    }

    // Compares what is held with what was held once everything had been used.
    void expectNothingMoreIsHeld(std::uint32_t sequences) {
        constexpr std::uint32_t warmUp = 200;
        constexpr std::uint32_t reported = 1000;
        const Held now;
        if (sequences <= warmUp)
            first_ = now;
        if (sequences % reported == 0)
            std::printf("%u sequences: %+ld handles, %+ld windows, %+ld KB of heap\n",
                        static_cast<unsigned>(sequences), now.handles - first_->handles,
                        now.windows - first_->windows, (now.heapBytes - first_->heapBytes) / 1024);
        std::fflush(stdout);
        EXPECT_LE(now.handles, first_->handles + 10);
        EXPECT_LE(now.windows, first_->windows + 1) << "OLE has one of its own now and then";
        EXPECT_LE(now.heapBytes, first_->heapBytes + 2048 * 1024);
    }

private:
    TempFolder folder_;
    const std::wstring file_ =
        folder_.write(L"short.wav", plainWav(pcm(44100, 2, 16), noise(8000)));
    std::optional<Held> first_;
    // The Windows Media library of the test environment leaves handles and memory behind each time
    // that it is unloaded, so it stays loaded. Windows' own does not need that.
    const HMODULE windowsMedia_ = ::LoadLibraryW(L"wmvcore.dll");
};

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
        constexpr std::uint32_t looked = 100;
        if (const std::uint32_t sequences = seed - first + 1; sequences % looked == 0) {
            expectPlaybackWorks();
            expectNothingMoreIsHeld(sequences);
            ASSERT_FALSE(HasFailure());
        }
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
