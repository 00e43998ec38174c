// Stands in for what runs the tests of a program, to try one mutant after the other in one process.
//
//   CORVINA_MUTANT_LEARN=FILE   runs all tests and writes for each its name, its milliseconds,
//   whether it
//                               passed, and the mutants that it reached; the tests run twice, and
//                               the last line is what they reached the second time
//   CORVINA_MUTANT_JOBS=FILE    lines of a number, a limit in milliseconds and a filter of tests
//   CORVINA_MUTANT_RESULTS=FILE what became of each: started, passed, failed, unsure (failed once,
//   then
//                               passed), dirty (fails without the mutant now), slow, crashed
//
// A failure counts when the test passes without the mutant and fails with it once more. The process
// ends at the first mutant that leaves it unfit for others; who started it goes on with the next.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <windows.h>

extern "C" int __thiscall __real__ZN7testing8UnitTest3RunEv(testing::UnitTest* all);

namespace mutants {
namespace {

std::string variable(const char* name) {
    char text[512] = "";
    ::GetEnvironmentVariableA(name, text, sizeof text);
    return text;
}

std::FILE* results;
std::atomic<DWORD> deadline{0};
std::atomic<int> current{0};

void note(const char* what, int number, const std::string& more = "") {
    std::fprintf(results, "%s\t%d\t%s\n", what, number, more.c_str());
    std::fflush(results);
}

[[noreturn]] void end(int code) {
    ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(code));
    for (;;)
        ::Sleep(1000);
}

DWORD WINAPI watch(void*) {
    for (;;) {
        ::Sleep(50);
        const DWORD until = deadline;
        if (until != 0 && static_cast<LONG>(::GetTickCount() - until) > 0) {
            note("slow", current);
            end(3);
        }
    }
}

LONG WINAPI crashed(EXCEPTION_POINTERS*) {
    note("crashed", current);
    end(4);
}

// The name of the first test that failed.
class FirstFailure : public testing::EmptyTestEventListener {
public:
    std::string name;

private:
    void OnTestEnd(const testing::TestInfo& test) override {
        if (name.empty() && test.result()->Failed())
            name = std::string(test.test_suite_name()) + "." + test.name();
    }
};

// What each test reached, and what was reached before the first; then what is reached again when
// all run once more in the same process.
class Reach : public testing::EmptyTestEventListener {
public:
    bool again = false;

    explicit Reach(std::FILE* file) : file_(file) { write("before", 0, true); }
    void write(const std::string& name, int milliseconds, bool passed) {
        std::fprintf(file_, "%s\t%d\t%d\t", name.c_str(), milliseconds, passed ? 1 : 0);
        State* const now = state ? state : openState();
        for (int number = 0; number < 100000; ++number)
            if (now->reached[number]) {
                std::fprintf(file_, "%d ", number);
                now->reached[number] = false;
            }
        std::fprintf(file_, "\n");
        std::fflush(file_);
    }

private:
    void OnTestEnd(const testing::TestInfo& test) override {
        if (!again)
            write(std::string(test.test_suite_name()) + "." + test.name(),
                  static_cast<int>(test.result()->elapsed_time()), !test.result()->Failed());
    }

    std::FILE* file_;
};

bool passes(testing::UnitTest* all, int number, const std::string& filter, DWORD limit) {
    State* const now = state ? state : openState();
    testing::GTEST_FLAG(filter) = filter;
    testing::GTEST_FLAG(fail_fast) = true;
    const DWORD until = ::GetTickCount() + limit;
    deadline = until != 0 ? until : 1;
    now->active = number;
    const bool passed = __real__ZN7testing8UnitTest3RunEv(all) == 0;
    now->active = 0;
    deadline = 0;
    return passed;
}

void runJobs(testing::UnitTest* all, const std::string& path) {
    auto* const failure = new FirstFailure;
    all->listeners().Append(failure);
    ::CreateThread(nullptr, 0, watch, nullptr, 0, nullptr);
    ::SetUnhandledExceptionFilter(crashed);
    std::ifstream jobs(path);
    for (std::string line; std::getline(jobs, line);) {
        std::istringstream words(line);
        int number = 0;
        DWORD limit = 0;
        std::string filter;
        words >> number >> limit >> filter;
        current = number;
        note("started", number);
        failure->name.clear();
        if (passes(all, number, filter, limit)) {
            note("passed", number);
            continue;
        }
        const std::string which = failure->name.empty() ? filter : failure->name;
        if (!passes(all, 0, which, limit)) {
            note("dirty", number, which);
            return;
        }
        note(passes(all, number, which, limit) ? "unsure" : "failed", number, which);
    }
}

} // namespace
} // namespace mutants

extern "C" int __thiscall __wrap__ZN7testing8UnitTest3RunEv(testing::UnitTest* all) {
    using namespace mutants;
    const std::string learn = variable("CORVINA_MUTANT_LEARN");
    const std::string jobs = variable("CORVINA_MUTANT_JOBS");
    if (learn.empty() && jobs.empty())
        return __real__ZN7testing8UnitTest3RunEv(all);
    delete all->listeners().Release(all->listeners().default_result_printer());
    if (!learn.empty()) {
        auto* const reach = new Reach(std::fopen(learn.c_str(), "w"));
        all->listeners().Append(reach);
        const int result = __real__ZN7testing8UnitTest3RunEv(all);
        reach->again = true;
        (void)__real__ZN7testing8UnitTest3RunEv(all);
        reach->write("again", 0, true);
        return result;
    }
    results = std::fopen(variable("CORVINA_MUTANT_RESULTS").c_str(), "a");
    runJobs(all, jobs);
    end(0);
}
