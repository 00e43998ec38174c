#pragma once

// Owns one reference to a COM object.

#include <unknwn.h>
#include <utility>

namespace corvina {

template <typename Interface>
class ComPtr {
public:
    ComPtr() noexcept = default;
    explicit ComPtr(Interface* pointer) noexcept : pointer_(pointer) {
        if (pointer_)
            pointer_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.pointer_) {}
    ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPtr() {
        if (pointer_)
            pointer_->Release();
    }

    // Takes over a reference that the caller owns.
    [[nodiscard]] static ComPtr adopt(Interface* pointer) noexcept {
        ComPtr result;
        result.pointer_ = pointer;
        return result;
    }

    [[nodiscard]] Interface* get() const noexcept { return pointer_; }
    Interface* operator->() const noexcept { return pointer_; }
    explicit operator bool() const noexcept { return pointer_ != nullptr; }

    // Gives the reference to the caller.
    [[nodiscard]] Interface* detach() noexcept { return std::exchange(pointer_, nullptr); }

    // Where a function stores a new reference; what was held before is released.
    [[nodiscard]] Interface** put() noexcept {
        reset();
        return &pointer_;
    }
    [[nodiscard]] void** putVoid() noexcept { return reinterpret_cast<void**>(put()); }

    void reset() noexcept {
        if (Interface* old = std::exchange(pointer_, nullptr))
            old->Release();
    }

    template <typename Other>
    [[nodiscard]] ComPtr<Other> query(REFIID iid = __uuidof(Other)) const noexcept {
        ComPtr<Other> result;
        if (pointer_)
            pointer_->QueryInterface(iid, result.putVoid());
        return result;
    }

private:
    Interface* pointer_ = nullptr;
};

} // namespace corvina
