#pragma once

// The owner of one handle of the system, which closes it when it goes out of scope.
//
//   struct KeyTraits {
//       using Handle = HKEY;
//       static constexpr Handle none = nullptr;
//       static void close(Handle key) noexcept { ::RegCloseKey(key); }
//   };
//   using RegistryKey = UniqueHandle<KeyTraits>;
//
// A handle that is opened through a table of functions, so that tests can make it fail, has an
// owner of its own beside that table.

#include <utility>

namespace corvina {

template <typename Traits>
class UniqueHandle {
public:
    using Handle = typename Traits::Handle;

    UniqueHandle() noexcept = default;
    explicit UniqueHandle(Handle handle) noexcept : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        if (this != &other)
            reset(other.release());
        return *this;
    }
    ~UniqueHandle() { reset(); }

    [[nodiscard]] Handle get() const noexcept { return handle_; }
    [[nodiscard]] explicit operator bool() const noexcept { return handle_ != Traits::none; }
    // Gives the handle away; the caller closes it.
    [[nodiscard]] Handle release() noexcept { return std::exchange(handle_, Traits::none); }
    void reset(Handle handle = Traits::none) noexcept {
        const Handle former = std::exchange(handle_, handle);
        if (former != Traits::none)
            Traits::close(former);
    }
    // For a function that returns the handle through a pointer. Closes the one before.
    [[nodiscard]] Handle* put() noexcept {
        reset();
        return &handle_;
    }

private:
    Handle handle_ = Traits::none;
};

} // namespace corvina
