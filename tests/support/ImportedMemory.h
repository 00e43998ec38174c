#pragma once

// The memory that a loaded library asks the C runtime for: its imports of malloc, calloc and
// realloc lead here from then on. One library for a program.

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>
#include <windows.h>

namespace corvina::test {

class ImportedMemory {
public:
    explicit ImportedMemory(const char* library) {
        auto* const module = reinterpret_cast<std::uint8_t*>(::LoadLibraryA(library));
        if (!module)
            throw std::runtime_error("the library is missing");
        const auto& dos = *reinterpret_cast<const IMAGE_DOS_HEADER*>(module);
        const auto& nt = *reinterpret_cast<const IMAGE_NT_HEADERS*>(module + dos.e_lfanew);
        const IMAGE_DATA_DIRECTORY& imports =
            nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        const auto* import =
            reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(module + imports.VirtualAddress);
        for (; import->Name != 0; ++import)
            redirect(module, *import);
        if (redirected_ != 3)
            throw std::runtime_error("the library does not import the three functions");
    }

    // The largest block that the library asked for since the last call.
    [[nodiscard]] static std::size_t takeLargestBlock() noexcept { return largest_.exchange(0); }

private:
    static void note(std::size_t bytes) noexcept {
        largest_ = std::max<std::size_t>(largest_, bytes);
    }
    static void* allocate(std::size_t bytes) {
        note(bytes);
        return std::malloc(bytes);
    }
    static void* allocateZeros(std::size_t count, std::size_t bytes) {
        note(bytes != 0 && count > SIZE_MAX / bytes ? SIZE_MAX : count * bytes);
        return std::calloc(count, bytes);
    }
    static void* resize(void* block, std::size_t bytes) {
        note(bytes);
        return std::realloc(block, bytes);
    }

    void redirect(std::uint8_t* module, const IMAGE_IMPORT_DESCRIPTOR& import) {
        const auto* name =
            reinterpret_cast<const IMAGE_THUNK_DATA*>(module + import.OriginalFirstThunk);
        auto* place = reinterpret_cast<IMAGE_THUNK_DATA*>(module + import.FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++place) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const auto& byName =
                *reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(module + name->u1.AddressOfData);
            for (const auto& [wanted, replacement] :
                 {std::pair{"malloc", reinterpret_cast<void*>(&allocate)},
                  std::pair{"calloc", reinterpret_cast<void*>(&allocateZeros)},
                  std::pair{"realloc", reinterpret_cast<void*>(&resize)}})
                if (std::strcmp(reinterpret_cast<const char*>(byName.Name), wanted) == 0)
                    replace(place->u1.Function, replacement);
        }
    }

    void replace(DWORD& function, void* replacement) {
        DWORD before = 0;
        ::VirtualProtect(&function, sizeof function, PAGE_READWRITE, &before);
        function = reinterpret_cast<DWORD>(replacement);
        ::VirtualProtect(&function, sizeof function, before, &before);
        ++redirected_;
    }

    inline static std::atomic<std::size_t> largest_ = 0;
    int redirected_ = 0;
};

} // namespace corvina::test
