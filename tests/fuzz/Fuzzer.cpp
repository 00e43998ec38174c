#include "fuzz/Fuzzer.h"

#include "fuzz/Coverage.h"
#include "fuzz/Mutator.h"
#include "fuzz/Recipe.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <windows.h>

namespace corvina::fuzz {
namespace {

using Clock = std::chrono::steady_clock;

constexpr DWORD longestRunMs = 5000; // on a busy machine
constexpr std::chrono::milliseconds slow{20};

Clock::duration timeOf(const FuzzTarget& target, const Bytes& input) {
    const auto start = Clock::now();
    runOnce(target, input);
    return Clock::now() - start;
}

const FuzzTarget* currentTarget = nullptr;
const Bytes* currentInput = nullptr;
std::atomic<DWORD> runningSince{0}; // 0 between runs

[[noreturn]] void endWith(const char* what) {
    runningSince = 0;
    if (currentTarget && currentInput)
        std::fprintf(stderr, "fuzz: %s: %s with the input\n%s\n", currentTarget->name.c_str(), what,
                     recipeOf(*currentInput).c_str());
    std::fflush(stderr);
    ::TerminateProcess(::GetCurrentProcess(), 3);
    for (;;) {
    }
}

// What the stack holds that may be a return address into this program, for addr2line.
void printPlaces(const CONTEXT& context) {
    const auto* const module = reinterpret_cast<const std::uint8_t*>(::GetModuleHandleW(nullptr));
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(
        module + reinterpret_cast<const IMAGE_DOS_HEADER*>(module)->e_lfanew);
    const auto code = reinterpret_cast<std::uintptr_t>(module);
    const auto* const stack = reinterpret_cast<const std::uintptr_t*>(context.Esp);
    MEMORY_BASIC_INFORMATION region{};
    ::VirtualQuery(stack, &region, sizeof region);
    const auto* const end = reinterpret_cast<const std::uintptr_t*>(
        static_cast<const std::uint8_t*>(region.BaseAddress) + region.RegionSize);
    int left = 24;
    for (const std::uintptr_t* word = stack; word < end && left > 0; ++word)
        if (*word - code <
            headers->OptionalHeader.BaseOfCode + headers->OptionalHeader.SizeOfCode) {
            std::fprintf(stderr, "%08zx ", static_cast<std::size_t>(*word));
            --left;
        }
    std::fputs("\n", stderr);
}

LONG WINAPI onException(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    // Only what ends a program: others are messages, and C++ does not come this way.
    switch (record.ExceptionCode) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_STACK_OVERFLOW:
    case EXCEPTION_PRIV_INSTRUCTION:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
        std::fprintf(stderr, "fuzz: exception %08lx at %p, of address %08zx\n",
                     record.ExceptionCode, record.ExceptionAddress,
                     static_cast<std::size_t>(record.ExceptionInformation[1]));
        printPlaces(*pointers->ContextRecord);
        endWith("crash");
    default:
        return EXCEPTION_CONTINUE_SEARCH;
    }
}

DWORD WINAPI watchTime(void*) {
    for (;;) {
        ::Sleep(500);
        const DWORD since = runningSince;
        if (since != 0 && ::GetTickCount() - since > longestRunMs)
            endWith("hang");
    }
}

} // namespace

void watchForCrashes() {
    ::AddVectoredExceptionHandler(1, &onException);
    ::CloseHandle(::CreateThread(nullptr, 0, &watchTime, nullptr, 0, nullptr));
}

void runOnce(const FuzzTarget& target, const Bytes& input) {
    currentTarget = &target;
    currentInput = &input;
    coverage::begin();
    runningSince = std::max<DWORD>(1, ::GetTickCount());
    try {
        target.run(input);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fuzz: thrown: %s\n", error.what());
        endWith("exception");
    } catch (...) {
        endWith("exception");
    }
    runningSince = 0;
}

FuzzReport fuzz(const FuzzTarget& target, const FuzzOptions& options) {
    coverage::forgetAll();
    FuzzReport report;
    std::vector<Clock::duration> times; // of the inputs of the corpus
    const auto attempt = [&](Bytes input) {
        ++report.runs;
        runOnce(target, input);
        if (coverage::learn() == 0)
            return;
        // What is slow would make all that grows out of it slow.
        const Clock::duration time = timeOf(target, input);
        if (time < slow) {
            report.corpus.push_back(std::move(input));
            times.push_back(time);
        }
    };
    for (const std::vector<Bytes>& given : {target.seeds(), options.corpus})
        for (const Bytes& input : given)
            attempt(input);
    if (report.corpus.empty()) {
        report.corpus.emplace_back();
        times.emplace_back();
    }

    Mutator mutator(options.seed);
    // The younger half is tried as often as all the others, and of two the one that runs quicker.
    const auto choose = [&] {
        const std::size_t count = report.corpus.size();
        const std::size_t first = mutator.below(2) ? count / 2 : 0;
        const std::size_t one = first + mutator.below(count - first);
        const std::size_t other = first + mutator.below(count - first);
        return times[one] <= times[other] ? one : other;
    };
    const auto end = Clock::now() + std::chrono::duration<double>(options.seconds);
    while ((options.runs == 0 || report.runs < options.runs) &&
           (report.runs % 64 != 0 || Clock::now() < end)) {
        const Bytes& chosen = report.corpus[choose()];
        const Bytes& other = report.corpus[mutator.below(report.corpus.size())];
        attempt(mutator.mutated(chosen, other, target.longest));
    }
    report.places = coverage::places();
    report.features = coverage::features();
    return report;
}

std::vector<Bytes> minimised(const FuzzTarget& target, std::vector<Bytes> corpus) {
    std::stable_sort(corpus.begin(), corpus.end(),
                     [](const Bytes& a, const Bytes& b) { return a.size() < b.size(); });
    coverage::forgetAll();
    std::vector<Bytes> kept;
    std::size_t placesSoFar = 0;
    for (const Bytes& input : corpus) {
        runOnce(target, input);
        (void)coverage::learn();
        // Only for a new place: how often it is visited comes by itself.
        if (coverage::places() > placesSoFar)
            kept.push_back(input);
        placesSoFar = coverage::places();
    }
    return kept;
}

} // namespace corvina::fuzz
