#include "sources/ApeLibrary.h"

#include "platform/AnsiText.h"
#include "runtime/RuntimeError.h"
#include "stream/LibrarySearch.h"

#include <string>

namespace corvina {
namespace {

constexpr const wchar_t* libraryName = L"MACDll.dll";

using Create = std::int32_t(__stdcall*)(const char*, std::int32_t*);
using CreateWide = std::int32_t(__stdcall*)(const wchar_t*, std::int32_t*);
using GetInfo = std::int32_t(__stdcall*)(std::int32_t, std::int32_t, std::int32_t, std::int32_t);
using GetData = std::int32_t(__stdcall*)(std::int32_t, void*, std::int32_t, std::int32_t*);
using Seek = std::int32_t(__stdcall*)(std::int32_t, std::int32_t);
using Destroy = std::int32_t(__stdcall*)(std::int32_t);

} // namespace

std::int32_t ApeLibrary::create(const char* ansiPath, std::int32_t& error) {
    return function<Create>("c_APEDecompress_Create")(ansiPath, &error);
}

std::int32_t ApeLibrary::createWide(const wchar_t* path, std::int32_t& error) {
    return function<CreateWide>("c_APEDecompress_CreateW")(path, &error);
}

std::int32_t ApeLibrary::getInfo(std::int32_t handle, std::int32_t field) {
    return function<GetInfo>("c_APEDecompress_GetInfo")(handle, field, 0, 0);
}

void ApeLibrary::getData(std::int32_t handle, void* buffer, std::int32_t blocks,
                         std::int32_t& blocksRetrieved) {
    function<GetData>("c_APEDecompress_GetData")(handle, buffer, blocks, &blocksRetrieved);
}

void ApeLibrary::seek(std::int32_t handle, std::int32_t block) {
    function<Seek>("c_APEDecompress_Seek")(handle, block);
}

void ApeLibrary::destroy(std::int32_t handle) {
    function<Destroy>("c_APEDecompress_Destroy")(handle);
}

template <typename Function>
Function ApeLibrary::function(const char* name) {
    if (!module_)
        module_ = loadOptionalLibrary(api_, libraryName);
    if (!module_)
        throwCannotLoadLibrary(libraryName);
    const FARPROC found = api_.getProcAddress(module_.get(), name);
    if (!found)
        throw RuntimeError(453,
                           L"Can't find DLL entry point " + fromAnsi(name) + L" in " + libraryName);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

} // namespace corvina
