#pragma once

// Whether a function is called from within itself.
//
// A flag would stay set for ever if the function were left without its destructors, as exceptions
// of other languages leave it. So a mark on the stack is looked at: it counts only if it lies above
// the caller, for the stack grows downwards, and if nothing has overwritten it.

#include <cstdint>

namespace corvina {

class Nesting {
public:
    class Scope {
    public:
        explicit Scope(Nesting& nesting) noexcept : nesting_(nesting) {
            mark_ = nesting.mark_ += 0x9E3779B9u; // another one each time
            nesting.scope_ = this;
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope() {
            mark_ = 0;
            nesting_.scope_ = nullptr;
        }

    private:
        friend class Nesting;
        Nesting& nesting_;
        volatile std::uint32_t mark_;
    };

    [[nodiscard]] bool underWay() const noexcept {
        const char here = 0;
        return scope_ &&
               reinterpret_cast<std::uintptr_t>(&here) < reinterpret_cast<std::uintptr_t>(scope_) &&
               scope_->mark_ == mark_;
    }

private:
    const Scope* scope_ = nullptr;
    std::uint32_t mark_ = 0;
};

} // namespace corvina
