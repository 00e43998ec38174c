// Included before every source of a mutated build. Each place that has a mutant calls one of these
// with the mutant's number: they behave as the code says, unless that mutant is the active one.
#pragma once

// The build tools try the compiler without the language version.
#if __cplusplus >= 202002L

#include <type_traits>
#include <utility>

namespace mutants {

// One for a process, shared by the program and the libraries of the mutated build that it loads.
struct State {
    volatile int active;
    volatile bool reached[100000];
};

extern State* state;
State* openState();

inline bool chosen(int number) {
    State* const now = state ? state : openState();
    now->reached[number] = true;
    return number == now->active;
}

// What is added to the number of a mutant in a constant, which is then computed when the program
// starts.
constexpr int inConstant = 1000000;

constexpr bool is(int number) {
    if (number < 0)
        return false;
    if (number >= inConstant)
        return chosen(number - inConstant);
    if (std::is_constant_evaluated())
        return false;
    return chosen(number);
}

// A relation with two mutants, or one.
#define CORVINA_MUTANT_RELATION(name, original, first, second)                                     \
    template <typename A, typename B>                                                              \
    constexpr bool name(int one, int two, A&& a, B&& b) {                                          \
        return is(one)   ? static_cast<bool>(a first b)                                            \
               : is(two) ? static_cast<bool>(a second b)                                           \
                         : static_cast<bool>(a original b);                                        \
    }
CORVINA_MUTANT_RELATION(less, <, <=, >=)
CORVINA_MUTANT_RELATION(lessEqual, <=, <, >)
CORVINA_MUTANT_RELATION(greater, >, >=, <=)
CORVINA_MUTANT_RELATION(greaterEqual, >=, >, <)

// One of two operators.
#define CORVINA_MUTANT_OPERATOR(name, original, mutated)                                           \
    template <typename A, typename B>                                                              \
    constexpr auto name(int number, A&& a, B&& b) {                                                \
        using Result = decltype(std::forward<A>(a) original std::forward<B>(b));                   \
        return is(number) ? static_cast<Result>(a mutated b) : static_cast<Result>(a original b);  \
    }
CORVINA_MUTANT_OPERATOR(equal, ==, !=)
CORVINA_MUTANT_OPERATOR(notEqual, !=, ==)
CORVINA_MUTANT_OPERATOR(plus, +, -)
CORVINA_MUTANT_OPERATOR(minus, -, +)
CORVINA_MUTANT_OPERATOR(times, *, +)
CORVINA_MUTANT_OPERATOR(divide, /, *)
CORVINA_MUTANT_OPERATOR(remainder, %, *)
CORVINA_MUTANT_OPERATOR(bitAnd, &, |)
CORVINA_MUTANT_OPERATOR(bitOr, |, &)
CORVINA_MUTANT_OPERATOR(bitXor, ^, &)
CORVINA_MUTANT_OPERATOR(left, <<, >>)
CORVINA_MUTANT_OPERATOR(right, >>, <<)

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
