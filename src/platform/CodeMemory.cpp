#include "platform/CodeMemory.h"

#include "runtime/OutOfMemory.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <windows.h>

namespace corvina {
namespace {

class Pool {
public:
    static constexpr std::size_t pieces = 256; // what the system's granularity takes in any case

    Pool() {
        // The mappings hold the section open after its handle is closed.
        const HANDLE section = ::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr,
                                                    PAGE_EXECUTE_READWRITE, 0, bytes, nullptr);
        if (!section)
            throwOutOfMemory();
        writable_ = ::MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, bytes);
        executable_ = ::MapViewOfFile(section, FILE_MAP_READ | FILE_MAP_EXECUTE, 0, 0, bytes);
        ::CloseHandle(section);
        if (!writable_ || !executable_) {
            unmap();
            throwOutOfMemory();
        }
    }
    ~Pool() { unmap(); }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

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
        return static_cast<std::uint8_t*>(writable_) + index * CodePiece::size;
    }
    [[nodiscard]] const std::uint8_t* executable(std::size_t index) const noexcept {
        return static_cast<const std::uint8_t*>(executable_) + index * CodePiece::size;
    }

private:
    static constexpr DWORD bytes = pieces * CodePiece::size;

    void unmap() noexcept {
        if (writable_)
            ::UnmapViewOfFile(writable_);
        if (executable_)
            ::UnmapViewOfFile(executable_);
    }

    void* writable_ = nullptr;
    void* executable_ = nullptr;
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
    // The same call often follows itself, and new code costs the processor twice what the call
    // does.
    if (std::equal(code.begin(), code.end(), entry()))
        return;
    std::copy(code.begin(), code.end(), pool().writable(index_));
    ::FlushInstructionCache(::GetCurrentProcess(), entry(), code.size());
}

const std::uint8_t* CodePiece::entry() const noexcept {
    return pool().executable(index_);
}

} // namespace corvina
