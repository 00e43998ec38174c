#include "support/FakeAspi.h"

#include <algorithm>
#include <thread>

namespace corvina::test {
namespace {

FakeAspi* aspi = nullptr;

HMODULE someModule() {
    return reinterpret_cast<HMODULE>(&aspi);
}

std::uint32_t __cdecl supportInfo() {
    return aspi->supportInfo;
}

void inquireAdapter(SRB_HAInquiry& block) {
    aspi->adapterInquiries.push_back(block);
    const bool deaf =
        std::ranges::find(aspi->deafAdapters, block.header.SRB_HaId) != aspi->deafAdapters.end();
    block.header.SRB_Status = deaf ? 0x81 : Aspi::complete;
}

void tellType(SRB_GDEVBlock& block) {
    aspi->typeQueries.push_back(block);
    const auto cdRom = aspi->cdRoms.find({block.header.SRB_HaId, block.SRB_Target});
    if (cdRom != aspi->cdRoms.end()) {
        block.SRB_DeviceType = Aspi::cdRom;
        block.header.SRB_Status = cdRom->second;
        return;
    }
    // Every third place has a disk, the others nothing at all.
    block.SRB_DeviceType = 0;
    block.header.SRB_Status = block.SRB_Target % 3 == 0 ? Aspi::complete : 0x82;
}

void runCommand(SRB_ExecSCSICmd& block) {
    aspi->commands.push_back(block);
    const std::uint8_t status = aspi->respond(block);
    if (!aspi->endsLate) {
        block.header.SRB_Status = status;
        return;
    }
    std::thread([&block, status] {
        ::Sleep(20);
        *const_cast<volatile std::uint8_t*>(&block.header.SRB_Status) = status;
    }).detach();
}

std::uint32_t __cdecl sendCommand(SrbHeader* block) {
    switch (block->SRB_Cmd) {
    case Aspi::hostAdapterInquiry:
        inquireAdapter(*reinterpret_cast<SRB_HAInquiry*>(block));
        break;
    case Aspi::getDeviceType:
        tellType(*reinterpret_cast<SRB_GDEVBlock*>(block));
        break;
    default:
        runCommand(*reinterpret_cast<SRB_ExecSCSICmd*>(block));
        break;
    }
    return block->SRB_Status;
}

HMODULE load(const std::string& name) {
    if (!aspi->loadable)
        return nullptr;
    ++aspi->loaded;
    aspi->loadedName = name;
    return someModule();
}

HMODULE WINAPI fakeLoad(LPCSTR name) {
    return load(name);
}

HMODULE WINAPI noFileBesideUs(LPCWSTR, HANDLE, DWORD) {
    return nullptr;
}

template <typename Function>
FARPROC asExport(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

FARPROC WINAPI fakeGetProc(HMODULE, LPCSTR name) {
    if (std::string(name) == "GetASPI32SupportInfo" && aspi->exportsSupportInfo)
        return asExport(&supportInfo);
    if (std::string(name) == "SendASPI32Command" && aspi->exportsSendCommand)
        return asExport(&sendCommand);
    return nullptr;
}

BOOL WINAPI fakeFree(HMODULE module) {
    if (module)
        ++aspi->freed;
    return TRUE;
}

} // namespace

FakeAspi::FakeAspi() {
    aspi = this;
}

const LibraryApi& FakeAspi::libraries() {
    static const LibraryApi table = [] {
        LibraryApi result;
        result.loadLibrary = &fakeLoad;
        result.loadLibraryFile = &noFileBesideUs;
        result.getProcAddress = &fakeGetProc;
        result.freeLibrary = &fakeFree;
        return result;
    }();
    return table;
}

} // namespace corvina::test
