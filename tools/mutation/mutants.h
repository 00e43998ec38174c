// Included before every source of a mutated build. Each place that has a mutant calls one of these with
// the mutant's number: they behave as the code says, unless that number is in CORVINA_MUTANT. What is
// reached is written to the file that CORVINA_MUTANTS_REACHED names.
#pragma once

// The build tools try the compiler without the language version.
#if __cplusplus >= 202002L

#include <cstdio>
#include <cstdlib>
#include <type_traits>
#include <utility>

namespace mutants {

inline bool seen[200000];

inline void reached(int number) {
    static const char* const path = std::getenv("CORVINA_MUTANTS_REACHED");
    if (!path || seen[number])
        return;
    seen[number] = true;
    if (std::FILE* const file = std::fopen(path, "a")) {
        std::fprintf(file, "%d\n", number);
        std::fclose(file);
    }
}

inline bool chosen(int number) {
    static const int active = [] {
        const char* const text = std::getenv("CORVINA_MUTANT");
        return text ? std::atoi(text) : 0;
    }();
    reached(number);
    return number == active;
}

// Number 0 is of a build for one mutant alone.
constexpr bool is(int number) {
    if (number == 0)
        return true;
    if (std::is_constant_evaluated())
        return false;
    return chosen(number);
}

// One of two operators.
#define CORVINA_MUTANT_OPERATOR(name, original, mutated)                                           \
    template <typename A, typename B>                                                              \
    constexpr auto name(int number, A&& a, B&& b) {                                                \
        using Result = decltype(std::forward<A>(a) original std::forward<B>(b));                   \
        return is(number) ? static_cast<Result>(a mutated b) : static_cast<Result>(a original b);  \
    }
CORVINA_MUTANT_OPERATOR(less_lessEqual, <, <=)
CORVINA_MUTANT_OPERATOR(less_greaterEqual, <, >=)
CORVINA_MUTANT_OPERATOR(lessEqual_less, <=, <)
CORVINA_MUTANT_OPERATOR(lessEqual_greater, <=, >)
CORVINA_MUTANT_OPERATOR(greater_greaterEqual, >, >=)
CORVINA_MUTANT_OPERATOR(greater_lessEqual, >, <=)
CORVINA_MUTANT_OPERATOR(greaterEqual_greater, >=, >)
CORVINA_MUTANT_OPERATOR(greaterEqual_less, >=, <)
CORVINA_MUTANT_OPERATOR(equal_notEqual, ==, !=)
CORVINA_MUTANT_OPERATOR(notEqual_equal, !=, ==)
CORVINA_MUTANT_OPERATOR(plus_minus, +, -)
CORVINA_MUTANT_OPERATOR(minus_plus, -, +)
CORVINA_MUTANT_OPERATOR(times_plus, *, +)
CORVINA_MUTANT_OPERATOR(divide_times, /, *)
CORVINA_MUTANT_OPERATOR(remainder_times, %, *)
CORVINA_MUTANT_OPERATOR(and_or, &, |)
CORVINA_MUTANT_OPERATOR(or_and, |, &)
CORVINA_MUTANT_OPERATOR(xor_and, ^, &)
CORVINA_MUTANT_OPERATOR(left_right, <<, >>)
CORVINA_MUTANT_OPERATOR(right_left, >>, <<)

#define CORVINA_MUTANT_ASSIGNMENT(name, original, mutated)                                         \
    template <typename A, typename B>                                                              \
    constexpr A& name(int number, A& a, B&& b) {                                                   \
        if (is(number))                                                                            \
            a mutated b;                                                                           \
        else                                                                                       \
            a original b;                                                                          \
        return a;                                                                                  \
    }
CORVINA_MUTANT_ASSIGNMENT(addAssign_subtract, +=, -=)
CORVINA_MUTANT_ASSIGNMENT(subtractAssign_add, -=, +=)

// An operand of && or ||, a condition, a returned truth.
template <typename T>
constexpr bool negate(int number, T&& condition) {
    return static_cast<bool>(condition) != is(number);
}

// A number that is one more.
template <typename T>
constexpr T more(int number, T value) {
    return is(number) ? static_cast<T>(value + 1) : value;
}

} // namespace mutants

#endif
