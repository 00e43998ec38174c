#pragma once

// A machine with CD drives that do not exist: the platform tables by which the backends find, open
// and ask drives, every request recorded.

#include "platform/DeviceApi.h"
#include "platform/FileApi.h"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace corvina::test {

struct DriveRequest {
    HANDLE device = nullptr;
    std::uint32_t code = 0;
    std::vector<std::uint8_t> input;
    void* output = nullptr;
    std::uint32_t outputBytes = 0;
};

class FakeDrives {
public:
    // The one machine of the test that is running, reset by this constructor.
    FakeDrives();

    // The tables of functions that reach it.
    [[nodiscard]] static const DeviceApi& devices();
    [[nodiscard]] static const FileApi& files();

    // Gives the machine a CD drive of that letter.
    void addCdRom(char letter) { types[letter] = DRIVE_CDROM; }

    DWORD platformId = VER_PLATFORM_WIN32_NT;
    BOOL versionResult = TRUE;
    std::map<char, UINT> types;
    std::set<char> refuseRead;  // letters whose device does not open at all
    std::set<char> refuseWrite; // letters whose device opens for reading only
    // What a request returns; may write to its output. Succeeds by default.
    std::function<bool(const DriveRequest&)> respond = [](const DriveRequest&) { return true; };

    std::vector<char> askedTypes; // letters in the order asked
    std::vector<std::string> opened;
    std::vector<DWORD> openedAccess;
    std::vector<DWORD> openedShare;
    std::vector<DWORD> openedDisposition;
    std::set<HANDLE> open;
    std::vector<DriveRequest> requests;

    // The letter of an open device.
    [[nodiscard]] static char letterOf(HANDLE device) {
        return static_cast<char>(reinterpret_cast<std::uintptr_t>(device) & 0xFF);
    }
};

} // namespace corvina::test
