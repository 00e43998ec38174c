#include "runtime/RuntimeError.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

struct Expected {
    void (*raise)();
    std::int32_t number;
    const wchar_t* text;
};

TEST(RuntimeErrors, each_has_its_number_and_its_text) {
    const Expected all[] = {
        {&throwInvalidCall, 5, L"Invalid procedure call or argument"},
        {&throwOverflow, 6, L"Overflow"},
        {&throwSubscript, 9, L"Subscript out of range"},
        {&throwDivisionByZero, 11, L"Division by zero"},
        {[] { throwCannotLoadLibrary(L"a.dll"); }, 53, L"File not found: a.dll"},
        {&throwObjectNotSet, 91, L"Object variable or With block variable not set"},
    };
    for (const Expected& expected : all) {
        try {
            expected.raise();
            ADD_FAILURE() << expected.number << " was not raised";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), expected.number);
            EXPECT_EQ(error.text(), expected.text);
        }
    }
}

} // namespace
} // namespace corvina
