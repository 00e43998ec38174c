#include "support/FakeDrives.h"

namespace corvina::test {
namespace {

FakeDrives* machine = nullptr;

BOOL WINAPI fakeVersion(LPOSVERSIONINFOA version) {
    if (version->dwOSVersionInfoSize != sizeof *version)
        return FALSE;
    version->dwPlatformId = machine->platformId;
    return machine->versionResult;
}

UINT WINAPI fakeDriveType(LPCSTR root) {
    machine->askedTypes.push_back(root[0]);
    const auto found = machine->types.find(root[0]);
    return found == machine->types.end() ? DRIVE_NO_ROOT_DIR : found->second;
}

HANDLE WINAPI fakeCreateFile(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES,
                             DWORD disposition, DWORD, HANDLE) {
    const std::string path = name;
    machine->opened.push_back(path);
    machine->openedAccess.push_back(access);
    machine->openedShare.push_back(share);
    machine->openedDisposition.push_back(disposition);
    const char letter = path.size() == 6 ? path[4] : '\0';
    if (!machine->types.contains(letter) || machine->refuseRead.contains(letter) ||
        ((access & GENERIC_WRITE) && machine->refuseWrite.contains(letter)))
        return INVALID_HANDLE_VALUE;
    static std::uintptr_t serial = 0;
    const auto handle = reinterpret_cast<HANDLE>(++serial << 8 | static_cast<std::uint8_t>(letter));
    machine->open.insert(handle);
    return handle;
}

BOOL WINAPI fakeCloseHandle(HANDLE handle) {
    return machine->open.erase(handle) == 1;
}

BOOL WINAPI fakeIoControl(HANDLE device, DWORD code, LPVOID input, DWORD inputBytes, LPVOID output,
                          DWORD outputBytes, LPDWORD got, LPOVERLAPPED) {
    if ((!input && inputBytes != 0) || (!output && outputBytes != 0))
        return FALSE;
    DriveRequest request{device, code, {}, output, outputBytes};
    if (input)
        request.input.assign(static_cast<std::uint8_t*>(input),
                             static_cast<std::uint8_t*>(input) + inputBytes);
    machine->requests.push_back(request);
    *got = outputBytes;
    return machine->open.contains(device) && machine->respond(request);
}

} // namespace

FakeDrives::FakeDrives() {
    machine = this;
}

const DeviceApi& FakeDrives::devices() {
    static const DeviceApi table{&fakeIoControl, &fakeDriveType, &fakeVersion};
    return table;
}

const FileApi& FakeDrives::files() {
    static const FileApi table = [] {
        FileApi result;
        result.createFile = &fakeCreateFile;
        result.closeHandle = &fakeCloseHandle;
        return result;
    }();
    return table;
}

} // namespace corvina::test
