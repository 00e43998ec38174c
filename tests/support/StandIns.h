#pragma once

// Stand-in decoder libraries: their functions are functions of the test program, found by the name
// of library and export, and called exactly as real ones are. What they are called with is written
// down as 32-bit words.
//
//   StandIns libraries;
//   libraries.add("ogg.dll");
//   libraries.add("vorbisfile.dll", {{"ov_clear", standIn(&ovClear)}});
//   DecOGG source(libraries.api());
//
// One set at a time.

#include "platform/LibraryApi.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace corvina::test {

struct Call {
    std::string name;
    std::vector<std::int32_t> words;
    bool operator==(const Call&) const = default;
};

inline void PrintTo(const Call& call, std::ostream* stream) {
    *stream << call.name << '(';
    for (const std::int32_t word : call.words)
        *stream << ' ' << word;
    *stream << " )";
}

template <typename Function>
[[nodiscard]] FARPROC standIn(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

[[nodiscard]] inline std::int32_t word(const void* address) {
    return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(address));
}

class StandIns {
public:
    using Exports = std::map<std::string, FARPROC>;

    StandIns() { current() = this; }
    ~StandIns() { current() = nullptr; }
    StandIns(const StandIns&) = delete;
    StandIns& operator=(const StandIns&) = delete;

    void add(const std::string& library, Exports exports = {}) {
        libraries_[library] = std::move(exports);
    }
    void remove(const std::string& library) { libraries_.erase(library); }
    void removeExport(const std::string& library, const std::string& name) {
        libraries_.at(library).erase(name);
    }

    // Calls body(library, export) for each export, which is missing meanwhile.
    template <typename Body>
    void withoutEachExport(Body body) {
        for (auto& [library, exports] : libraries_)
            for (const auto& [name, function] : Exports(exports)) {
                exports.erase(name);
                body(library, name);
                exports[name] = function;
            }
    }

    [[nodiscard]] static const LibraryApi& api() {
        static const LibraryApi table{.loadLibrary = &load,
                                      .loadLibraryFile = &loadFile,
                                      .getProcAddress = &find,
                                      .freeLibrary = &free};
        return table;
    }

    // The libraries asked for by name and freed, in order: "load x.dll", "free x.dll", "free 0".
    std::vector<std::string> loads;
    // The functions called, in order.
    std::vector<Call> calls;

    [[nodiscard]] int called(const std::string& name) const {
        return static_cast<int>(std::count_if(
            calls.begin(), calls.end(), [&name](const Call& call) { return call.name == name; }));
    }

    // What was called since the last time.
    [[nodiscard]] std::vector<Call> taken() { return std::exchange(calls, {}); }

    // For the stand-in functions.
    static void record(std::string name, std::vector<std::int32_t> words) {
        current()->calls.push_back({std::move(name), std::move(words)});
    }

private:
    static StandIns*& current() {
        static StandIns* instance = nullptr;
        return instance;
    }

    static HMODULE WINAPI load(const char* name) {
        current()->loads.push_back(std::string("load ") + name);
        const auto found = current()->libraries_.find(name);
        return found == current()->libraries_.end() ? nullptr
                                                    : reinterpret_cast<HMODULE>(&found->second);
    }
    static HMODULE WINAPI loadFile(const wchar_t*, HANDLE, DWORD) { return nullptr; }
    static FARPROC WINAPI find(HMODULE module, const char* name) {
        const Exports& exports = *reinterpret_cast<const Exports*>(module);
        const auto found = exports.find(name);
        return found == exports.end() ? nullptr : found->second;
    }
    static BOOL WINAPI free(HMODULE module) {
        for (const auto& [name, exports] : current()->libraries_)
            if (reinterpret_cast<HMODULE>(const_cast<Exports*>(&exports)) == module)
                current()->loads.push_back("free " + name);
        if (!module)
            current()->loads.push_back("free 0");
        return module != nullptr;
    }

    std::map<std::string, Exports> libraries_;
};

} // namespace corvina::test
