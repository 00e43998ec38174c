// The sources that ask decoder libraries, when each call that finds a library or a function of it
// fails, alone and in pairs: a source is refused or raises an error, and gives back what it loaded.

#include "runtime/RuntimeError.h"
#include "sources/DecAPE.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "sources/SndfileSource.h"
#include "support/Faults.h"
#include "support/Media.h"

#include <gmock/gmock.h>
#include <memory>
#include <vector>

namespace corvina::test {
namespace {

using testing::AnyOf;

Faults libraryFaults;
int loadedLibraries = 0;

HMODULE WINAPI loadLibrary(LPCSTR name) {
    const HMODULE library = libraryFaults.strikes("LoadLibrary") ? nullptr : ::LoadLibraryA(name);
    loadedLibraries += library != nullptr;
    return library;
}

HMODULE WINAPI loadLibraryFile(LPCWSTR path, HANDLE file, DWORD flags) {
    const HMODULE library =
        libraryFaults.strikes("LoadLibraryEx") ? nullptr : ::LoadLibraryExW(path, file, flags);
    loadedLibraries += library != nullptr;
    return library;
}

FARPROC WINAPI getProcAddress(HMODULE library, LPCSTR name) {
    return libraryFaults.strikes("GetProcAddress") ? nullptr : ::GetProcAddress(library, name);
}

// One that reports a failure has given the library back all the same.
BOOL WINAPI freeLibrary(HMODULE library) {
    const bool fails = libraryFaults.strikes("FreeLibrary");
    const BOOL freed = library && ::FreeLibrary(library);
    loadedLibraries -= freed != FALSE;
    return freed && !fails;
}

const LibraryApi faultyLibraries{.loadLibrary = &loadLibrary,
                                 .loadLibraryFile = &loadLibraryFile,
                                 .getProcAddress = &getProcAddress,
                                 .freeLibrary = &freeLibrary};

template <typename Call>
void raisingAtMost(Call call) {
    try {
        call();
    } catch (const RuntimeError&) { // an export that is missing
    }
}

void play(cSoundSTRM& source, const wchar_t* file) {
    const std::int32_t opened = source.OpenSource(mediaFile(file));
    EXPECT_THAT(opened, AnyOf(0, 1, 3, 4)); // 3 and 4: without a library
    std::vector<std::uint8_t> buffer(4000);
    std::int32_t got = 0;
    std::int32_t mode = 0;
    (void)source.Read(buffer.data(), 4000, got);
    EXPECT_LE(got, 4000);
    (void)source.SeekTo(50, mode);
    (void)source.Info().Position();
}

template <typename Source>
void expectSurvived(const wchar_t* file) {
    forEachFaultAndPair(libraryFaults, [file] {
        loadedLibraries = 0;
        {
            std::unique_ptr<cSoundSTRM> source;
            raisingAtMost([&] { source = std::make_unique<Source>(faultyLibraries); });
            if (source) {
                raisingAtMost([&] { play(*source, file); });
                raisingAtMost([&] { (void)source->CloseSource(); });
            }
        }
        EXPECT_EQ(loadedLibraries, 0) << "a library is kept, or given back twice";
    });
}

TEST(LibraryFaults, of_the_ogg_source_are_survived) {
    expectSurvived<DecOGG>(L"clip.ogg");
}

TEST(LibraryFaults, of_the_source_of_sampled_files_are_survived) {
    expectSurvived<DecSND>(L"clip.au");
}

TEST(LibraryFaults, of_the_ape_source_are_survived) {
    expectSurvived<DecAPE>(L"clip.ape");
}

TEST(LibraryFaults, of_the_source_of_todays_formats_are_survived) {
    expectSurvived<SndfileSource>(L"clip.flac");
}

} // namespace
} // namespace corvina::test
