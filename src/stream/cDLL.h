#pragma once

// Calls exports of a library that is loaded by name, with 32-bit arguments in either calling
// convention.
//
//   cDLL library;
//   if (library.LoadDLL(L"vorbisfile.dll")) {
//       library.IsCDECL(true);
//       library.CallFunc("ov_clear", state.data());
//       library.UnloadDLL();
//   }
//
// Used on one thread. The owner calls UnloadDLL: destroying a cDLL leaves the library loaded. A
// wrong convention or argument count cannot be noticed. A function that is called may use the same
// cDLL.

#include "platform/LibraryApi.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>

namespace corvina {

template <typename Type>
concept CallArgument = std::is_pointer_v<Type> || std::is_null_pointer_v<Type> ||
    (std::is_integral_v<Type> && !std::is_same_v<Type, bool> && sizeof(Type) <= 4);

class cDLL {
public:
    explicit cDLL(const LibraryApi& api = systemLibraryApi) noexcept : api_(api) {}
    cDLL(const cDLL&) = delete;
    cDLL& operator=(const cDLL&) = delete;

    // The library's handle, 0 if none is loaded.
    [[nodiscard]] std::int32_t ModuleHandle() const noexcept;

    // The convention of the calls that follow: true if the caller removes the arguments.
    [[nodiscard]] bool IsCDECL() const noexcept { return cdecl_; }
    void IsCDECL(bool isCdecl) noexcept { cdecl_ = isCdecl; }

    // Loads a library, beside this module first. IsCDECL becomes false. A library that this object
    // loaded before stays loaded.
    bool LoadDLL(const std::wstring& name);

    void UnloadDLL() noexcept;

    // Calls an export and returns what it leaves in eax. Nothing is called if the export does
    // not exist (error 1, "Export missing!") or there are more than 44 arguments (Subscript out of
    // range).
    std::int32_t CallFunc(const char* name, std::span<const std::int32_t> arguments);

    template <CallArgument... Arguments>
    std::int32_t CallFunc(const char* name, Arguments... arguments) {
        const std::array<std::int32_t, sizeof...(Arguments)> words{asWord(arguments)...};
        return CallFunc(name, std::span<const std::int32_t>(words));
    }

private:
    template <CallArgument Type>
    [[nodiscard]] static std::int32_t asWord(Type argument) noexcept {
        if constexpr (std::is_null_pointer_v<Type>)
            return 0;
        else if constexpr (std::is_pointer_v<Type>)
            return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(argument));
        else
            return static_cast<std::int32_t>(argument);
    }

    const LibraryApi& api_;
    HMODULE module_ = nullptr;
    bool cdecl_ = false;
};

} // namespace corvina
