#include "platform/CodeMemory.h"

#include "platform/UniqueHandle.h"
#include "runtime/OutOfMemory.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <windows.h>

namespace corvina {
namespace {

struct SectionTraits {
    using Handle = HANDLE;
    static constexpr Handle none = nullptr;
    static void close(Handle section) noexcept { ::CloseHandle(section); }
};
using Section = UniqueHandle<SectionTraits>;

struct ViewTraits {
    using Handle = void*;
    static constexpr Handle none = nullptr;
    static void close(Handle view) noexcept { ::UnmapViewOfFile(view); }
};
using View = UniqueHandle<ViewTraits>;

class Pool {
public:
    static constexpr std::size_t pieces = 256; // 64 KiB, the least that the system maps

    Pool() {
        // The views keep the memory after the section's handle is closed. Without a section there
        // are no views either.
        const Section section(::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr,
                                                   PAGE_EXECUTE_READWRITE, 0, bytes, nullptr));
        writable_ = View(::MapViewOfFile(section.get(), FILE_MAP_WRITE, 0, 0, 0));
        executable_ =
            View(::MapViewOfFile(section.get(), FILE_MAP_READ | FILE_MAP_EXECUTE, 0, 0, 0));
        if (!writable_ || !executable_)
            throwOutOfMemory();
    }

    std::size_t take(std::uint32_t use) {
        const std::size_t first = (use * 2654435761u) >> 24; // spreads neighbouring numbers
        for (std::size_t step = 0; step < pieces; ++step) {
            const std::size_t index = (first + step) % pieces;
            if (!busy_[index].test_and_set(std::memory_order_acquire))
                return index;
        }
        throwOutOfMemory();
    }
    void giveBack(std::size_t index) noexcept { busy_[index].clear(std::memory_order_release); }

    [[nodiscard]] std::uint8_t* writable(std::size_t index) const noexcept {
        return static_cast<std::uint8_t*>(writable_.get()) + index * CodePiece::size;
    }
    [[nodiscard]] const std::uint8_t* executable(std::size_t index) const noexcept {
        return static_cast<const std::uint8_t*>(executable_.get()) + index * CodePiece::size;
    }

private:
    static constexpr DWORD bytes = pieces * CodePiece::size;

    View writable_;
    View executable_;
    std::array<std::atomic_flag, pieces> busy_{};
};

Pool& pool() {
    static Pool instance;
    return instance;
}

} // namespace

CodePiece::CodePiece(std::uint32_t use) : index_(pool().take(use)) {}

CodePiece::~CodePiece() {
    pool().giveBack(index_);
}

void CodePiece::write(std::span<const std::uint8_t> code) noexcept {
    code = code.first(std::min(code.size(), size));
    // The same call is often repeated, and new code costs the processor twice as much as the call.
    if (std::equal(code.begin(), code.end(), entry()))
        return;
    std::copy(code.begin(), code.end(), pool().writable(index_));
    ::FlushInstructionCache(::GetCurrentProcess(), entry(), code.size());
}

const std::uint8_t* CodePiece::entry() const noexcept {
    return pool().executable(index_);
}

} // namespace corvina
