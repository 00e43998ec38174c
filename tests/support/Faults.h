#pragma once

// Decides which platform call fails. A fake table asks it on every call, by the function's name; a
// test arms one failure, or sweeps all of them:
//
//   Faults faults;
//   HANDLE WINAPI failingCreateFile(...) {
//       return faults.strikes("CreateFile") ? INVALID_HANDLE_VALUE : ::CreateFileA(...);
//   }
//   forEachFault(faults, [] { use the class; expect the stated result; expect nothing leaked; });
//
// Fakes are static functions, so a Faults object is usually a global of its test program.

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace corvina::test {

class Faults {
public:
    enum class Lasting { once, forever };

    // Makes the nth call (from 1) of the function fail, or that one and all after it. The code is
    // for the fake to return where a function has more than one way to fail.
    void arm(std::string function, int nth, Lasting lasting = Lasting::once, int code = 0) {
        calls_.clear();
        struck_ = 0;
        function_ = std::move(function);
        nth_ = nth;
        lasting_ = lasting;
        code_ = code;
    }

    // Nothing fails; counting starts again.
    void disarm() { arm({}, 0); }

    // Counts a call of the function; whether it must fail.
    [[nodiscard]] bool strikes(const std::string& function) {
        const int call = ++calls_[function];
        if (function != function_ ||
            !(call == nth_ || (call > nth_ && lasting_ == Lasting::forever)))
            return false;
        ++struck_;
        return true;
    }

    // What was armed.
    [[nodiscard]] const std::string& function() const noexcept { return function_; }
    [[nodiscard]] int code() const noexcept { return code_; }
    // How many calls failed since arming.
    [[nodiscard]] int struck() const noexcept { return struck_; }
    // How often each function was called since arming.
    [[nodiscard]] const std::map<std::string, int>& calls() const noexcept { return calls_; }
    [[nodiscard]] int calls(const std::string& function) const {
        const auto found = calls_.find(function);
        return found == calls_.end() ? 0 : found->second;
    }

private:
    std::map<std::string, int> calls_;
    std::string function_;
    int nth_ = 0;
    Lasting lasting_ = Lasting::once;
    int code_ = 0;
    int struck_ = 0;
};

// Runs the scenario once without a failure to learn its calls, then once for each call of each
// function, failing only that time, and again failing from that time on. The scenario must expect
// what holds under any failure; faults.struck() tells it whether one came.
template <typename Scenario>
void forEachFault(Faults& faults, Scenario scenario) {
    faults.disarm();
    scenario();
    const std::map<std::string, int> learnt = faults.calls();
    ASSERT_FALSE(learnt.empty()) << "the scenario calls none of the faked functions";
    for (const auto& [function, count] : learnt)
        for (int nth = 1; nth <= count; ++nth)
            for (const auto lasting : {Faults::Lasting::once, Faults::Lasting::forever}) {
                SCOPED_TRACE(function + " fails at call " + std::to_string(nth) +
                             (lasting == Faults::Lasting::once ? " only" : " and ever after"));
                faults.arm(function, nth, lasting);
                scenario();
                EXPECT_GT(faults.struck(), 0);
            }
    faults.disarm();
}

} // namespace corvina::test
