#pragma once

// The owner of one handle that is opened and closed through a table of functions, so that tests can
// make each call fail. It closes the handle when it goes out of scope; the table must outlive it.
//
//   struct FileHandleTraits {
//       using Api = FileApi;
//       using Handle = HANDLE;
//       static Handle none() noexcept { return INVALID_HANDLE_VALUE; }
//       static void close(const Api& api, Handle file) noexcept { api.closeHandle(file); }
//   };
//   using FileHandle = ApiHandle<FileHandleTraits>;

#include <utility>

namespace corvina {

template <typename Traits>
class ApiHandle {
public:
    using Api = typename Traits::Api;
    using Handle = typename Traits::Handle;

    ApiHandle() noexcept = default;
    ApiHandle(const Api& api, Handle handle) noexcept : api_(&api), handle_(handle) {}
    ApiHandle(ApiHandle&& other) noexcept
        : api_(other.api_), handle_(std::exchange(other.handle_, Traits::none())) {}
    ApiHandle& operator=(ApiHandle&& other) noexcept {
        if (this != &other) {
            reset();
            api_ = other.api_;
            handle_ = std::exchange(other.handle_, Traits::none());
        }
        return *this;
    }
    ~ApiHandle() { reset(); }

    [[nodiscard]] Handle get() const noexcept { return handle_; }
    [[nodiscard]] explicit operator bool() const noexcept { return handle_ != Traits::none(); }
    // Gives the handle away; the caller closes it.
    [[nodiscard]] Handle release() noexcept { return std::exchange(handle_, Traits::none()); }
    void reset() noexcept {
        const Handle former = release();
        if (former != Traits::none())
            Traits::close(*api_, former);
    }

private:
    const Api* api_ = nullptr; // null only without a handle
    Handle handle_ = Traits::none();
};

} // namespace corvina
