#include "platform/CodeMemory.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <vector>
#include <windows.h>

namespace corvina {
namespace {

struct Place {
    std::uint8_t* writable;
    const std::uint8_t* entry;
};

// One stretch of memory behind its two mappings.
class DoubleMapping {
public:
    static constexpr DWORD bytes = 0x10000; // what the system's granularity takes in any case

    DoubleMapping() {
        // The mappings hold the section open after its handle is closed.
        const HANDLE section = ::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr,
                                                    PAGE_EXECUTE_READWRITE, 0, bytes, nullptr);
        if (!section)
            throw std::bad_alloc();
        writable_ = ::MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, bytes);
        executable_ = ::MapViewOfFile(section, FILE_MAP_READ | FILE_MAP_EXECUTE, 0, 0, bytes);
        ::CloseHandle(section);
        if (!writable_ || !executable_) {
            unmap();
            throw std::bad_alloc();
        }
    }
    ~DoubleMapping() { unmap(); }
    DoubleMapping(const DoubleMapping&) = delete;
    DoubleMapping& operator=(const DoubleMapping&) = delete;

    [[nodiscard]] Place at(std::size_t offset) const noexcept {
        return {static_cast<std::uint8_t*>(writable_) + offset,
                static_cast<const std::uint8_t*>(executable_) + offset};
    }

private:
    void unmap() noexcept {
        if (writable_)
            ::UnmapViewOfFile(writable_);
        if (executable_)
            ::UnmapViewOfFile(executable_);
    }

    void* writable_ = nullptr;
    void* executable_ = nullptr;
};

class Pool {
public:
    Place take() {
        const std::lock_guard lock(mutex_);
        if (free_.empty())
            grow();
        const Place place = free_.back();
        free_.pop_back();
        return place;
    }

    void giveBack(Place place) noexcept {
        const std::lock_guard lock(mutex_);
        free_.push_back(place); // within the capacity that grow() made
    }

private:
    void grow() {
        constexpr std::size_t pieces = DoubleMapping::bytes / CodePiece::size;
        free_.reserve((mappings_.size() + 1) * pieces);
        mappings_.push_back(std::make_unique<DoubleMapping>());
        for (std::size_t piece = pieces; piece-- > 0;)
            free_.push_back(mappings_.back()->at(piece * CodePiece::size));
    }

    std::mutex mutex_;
    std::vector<std::unique_ptr<DoubleMapping>> mappings_;
    std::vector<Place> free_;
};

Pool& pool() {
    static Pool instance;
    return instance;
}

} // namespace

CodePiece::CodePiece() {
    const Place place = pool().take();
    writable_ = place.writable;
    entry_ = place.entry;
}

CodePiece::~CodePiece() {
    pool().giveBack({writable_, entry_});
}

void CodePiece::write(std::span<const std::uint8_t> code) noexcept {
    std::copy_n(code.begin(), std::min(code.size(), size), writable_);
    ::FlushInstructionCache(::GetCurrentProcess(), entry_, size);
}

} // namespace corvina
