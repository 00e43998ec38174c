#pragma once

// Steps of an end that are all made, even if some of them throw.
//
//   FirstFailure failure;
//   failure.guard([&] { source.CloseSource(); });
//   failure.guard([&] { converter.CloseConverter(); });
//   failure.rethrow();

#include <exception>

namespace corvina {

class FirstFailure {
public:
    template <typename Step>
    void guard(Step&& step) noexcept {
        try {
            step();
        } catch (...) {
            if (!first_)
                first_ = std::current_exception();
        }
    }
    // Raises what the first failed step has thrown. Nothing if none failed.
    void rethrow() const {
        if (first_)
            std::rethrow_exception(first_);
    }

private:
    std::exception_ptr first_;
};

} // namespace corvina
