// The track files of a disc in a drive, as the drive brings them and as the tool makes them.

#include "VirtualDrivesFixture.h"
#include "support/MessagePump.h"

namespace corvina::test {
namespace {

TEST_F(VirtualDrives, tracks_of_minutes_and_odd_frames_match_their_files) {
    const DiscImage disc({audio(300), data(20), audio(4567)});
    d->load(disc);
    for (int track = 1; track <= 3; ++track) {
        DecCDA source;
        EXPECT_EQ(source.OpenSource(d->trackPath(track)), 0) << track;
    }
}

// Runs a Linux program, as Wine lets a Windows program do; its exit code.
std::optional<DWORD> run(const std::string& commandLine) {
    std::string mutableLine = commandLine;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!::CreateProcessA(nullptr, mutableLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                          &startup, &process))
        return std::nullopt;
    DWORD code = STILL_ACTIVE;
    ::WaitForSingleObject(process.hProcess, 30000);
    ::GetExitCodeProcess(process.hProcess, &code);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return code;
}

TEST_F(VirtualDrives, the_track_files_of_the_tool_open_their_tracks) {
    const DiscImage disc({audio(300), data(20), audio(4567)});
    const std::string tool = "..\\wine\\virtual-drive\\make-track-files ";
    ASSERT_TRUE(run(tool + disc.cue() + " " + e->unixRoot()));
    d->set({"disc " + disc.cue()});
    for (int track = 1; track <= 3; ++track) {
        DecCDA source;
        const std::wstring path = e->trackPath(track);
        // Linux programs run beside Wine, not under it: nothing signals their end.
        ASSERT_TRUE(pumpUntil([&] { return source.OpenSource(path) == 0; })) << track;
        EXPECT_EQ(source.Duration(), (disc.sectors(track) * 40 + 1) / 3);
        source.CloseSource();
        ::DeleteFileW(path.c_str());
    }
}

} // namespace
} // namespace corvina::test
