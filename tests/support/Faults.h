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

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace corvina::test {

class Faults {
public:
    enum class Lasting { once, forever };

    // Makes the nth call (from 1) of the function fail, or that one and all after it. The code is
    // for the fake to return if a function has more than one way to fail.
    void arm(std::string function, int nth, Lasting lasting = Lasting::once, int code = 0) {
        calls_.clear();
        callsAfter_.clear();
        second_.clear();
        struck_ = 0;
        function_ = std::move(function);
        nth_ = nth;
        lasting_ = lasting;
        code_ = code;
    }

    // The same for one call, and after it the nth call from there on of another function, or of the
    // same.
    void armPair(const std::string& function, int nth, std::string second, int nthAfter) {
        arm(function, nth);
        second_ = std::move(second);
        nthAfter_ = nthAfter;
    }

    // Nothing fails; counting starts again.
    void disarm() { arm({}, 0); }

    // Counts a call of the function; whether it must fail.
    [[nodiscard]] bool strikes(const std::string& function) {
        const int call = ++calls_[function];
        const int after = struck_ > 0 ? ++callsAfter_[function] : 0;
        const bool first = function == function_ &&
                           (call == nth_ || (call > nth_ && lasting_ == Lasting::forever));
        const bool second = after > 0 && function == second_ && after == nthAfter_;
        struck_ += first || second;
        return first || second;
    }

    // What was armed.
    [[nodiscard]] const std::string& function() const noexcept { return function_; }
    [[nodiscard]] int code() const noexcept { return code_; }
    // How many calls failed since arming.
    [[nodiscard]] int struck() const noexcept { return struck_; }
    // How often each function was called since arming.
    [[nodiscard]] const std::map<std::string, int>& calls() const noexcept { return calls_; }
    // The same since the first failure.
    [[nodiscard]] const std::map<std::string, int>& callsAfter() const noexcept {
        return callsAfter_;
    }
    [[nodiscard]] int calls(const std::string& function) const {
        const auto found = calls_.find(function);
        return found == calls_.end() ? 0 : found->second;
    }

private:
    std::map<std::string, int> calls_;
    std::map<std::string, int> callsAfter_;
    std::string second_;
    int nthAfter_ = 0;
    std::string function_;
    int nth_ = 0;
    Lasting lasting_ = Lasting::once;
    int code_ = 0;
    int struck_ = 0;
};

// Runs the scenario once without a failure to learn its calls, then once for each call of each
// function, failing only that time, and again failing from that time on. The scenario must expect
// what holds under any failure; faults.struck() says whether one came.
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

// The same with a second failure in what is done about the first: for each call of each function
// the first calls of each function after it fail too, one at a time.
template <typename Scenario>
void forEachPairOfFaults(Faults& faults, Scenario scenario, int mostCallsAfter = 4) {
    faults.disarm();
    scenario();
    const std::map<std::string, int> learnt = faults.calls();
    ASSERT_FALSE(learnt.empty()) << "the scenario calls none of the faked functions";
    int pairs = 0;
    for (const auto& [function, count] : learnt)
        for (int nth = 1; nth <= count; ++nth) {
            SCOPED_TRACE(function + " fails at call " + std::to_string(nth));
            faults.arm(function, nth);
            scenario();
            const std::map<std::string, int> after = faults.callsAfter();
            for (const auto& [second, countAfter] : after)
                for (int later = 1; later <= std::min(countAfter, mostCallsAfter); ++later) {
                    SCOPED_TRACE("and " + second + " at its call " + std::to_string(later) +
                                 " from then on");
                    faults.armPair(function, nth, second, later);
                    scenario();
                    EXPECT_GT(faults.struck(), 0);
                    ++pairs;
                }
        }
    testing::Test::RecordProperty("pairs", pairs);
    faults.disarm();
}

template <typename Scenario>
void forEachFaultAndPair(Faults& faults, Scenario scenario, int mostCallsAfter = 1) {
    forEachFault(faults, scenario);
    forEachPairOfFaults(faults, scenario, mostCallsAfter);
}

} // namespace corvina::test
