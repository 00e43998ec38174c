#include "runtime/RuntimeError.h"
#include "stream/CallStub.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

namespace corvina {
namespace {

using testing::ElementsAre;

std::vector<std::int32_t> counting(std::size_t count) {
    std::vector<std::int32_t> values(count);
    std::iota(values.begin(), values.end(), 1);
    return values;
}

TEST(CallStub, stdcall_without_arguments_is_the_fixed_bytes_and_the_call) {
    const CallStub stub = makeStdcallStub(0x00010000, 0x00020000, {});
    // The displacement counts from the end of the call instruction, at 11: 0x20000 - 0x1000B.
    EXPECT_THAT(stub.code(), ElementsAre(0x58, 0x59, 0x59, 0x59, 0x59, 0x50, //
                                         0xE8, 0xF5, 0xFF, 0x00, 0x00,       //
                                         0xC3));
}

TEST(CallStub, stdcall_pushes_the_last_argument_first) {
    const std::vector<std::int32_t> arguments{0x11223344, -2};
    const CallStub stub = makeStdcallStub(0x1000, 0x1015, arguments);
    EXPECT_THAT(stub.code(), ElementsAre(0x58, 0x59, 0x59, 0x59, 0x59, 0x50, //
                                         0x68, 0xFE, 0xFF, 0xFF, 0xFF,       //
                                         0x68, 0x44, 0x33, 0x22, 0x11,       //
                                         0xE8, 0x00, 0x00, 0x00, 0x00,       //
                                         0xC3));
}

TEST(CallStub, a_stdcall_target_below_the_code_is_a_negative_displacement) {
    const CallStub stub = makeStdcallStub(0x1000, 0x100A, {});
    EXPECT_THAT(stub.code().subspan(6, 5), ElementsAre(0xE8, 0xFF, 0xFF, 0xFF, 0xFF));
}

TEST(CallStub, cdecl_without_arguments_removes_nothing) {
    const CallStub stub = makeCdeclStub(0x12345678, {});
    EXPECT_THAT(stub.code(), ElementsAre(0xB8, 0x78, 0x56, 0x34, 0x12, //
                                         0xFF, 0xD0,                   //
                                         0x83, 0xC4, 0x00,             //
                                         0xC2, 0x10, 0x00));
}

TEST(CallStub, cdecl_removes_what_it_pushed) {
    const std::vector<std::int32_t> arguments{1, 2};
    const CallStub stub = makeCdeclStub(0x12345678, arguments);
    EXPECT_THAT(stub.code(), ElementsAre(0x68, 0x02, 0x00, 0x00, 0x00, //
                                         0x68, 0x01, 0x00, 0x00, 0x00, //
                                         0xB8, 0x78, 0x56, 0x34, 0x12, //
                                         0xFF, 0xD0,                   //
                                         0x83, 0xC4, 0x08,             //
                                         0xC2, 0x10, 0x00));
}

TEST(CallStub, thirty_one_cdecl_arguments_are_removed_at_once) {
    const CallStub stub = makeCdeclStub(0, counting(31));
    EXPECT_THAT(stub.code().last(6), ElementsAre(0x83, 0xC4, 124, 0xC2, 0x10, 0x00));
    EXPECT_EQ(stub.length, 13u + 31 * 5);
}

TEST(CallStub, more_than_127_bytes_are_removed_in_two_steps_because_the_operand_is_signed) {
    const CallStub stub = makeCdeclStub(0, counting(32));
    EXPECT_THAT(stub.code().last(9), ElementsAre(0x83, 0xC4, 124, 0x83, 0xC4, 4, 0xC2, 0x10, 0x00));
}

TEST(CallStub, forty_four_arguments_fit_in_both_conventions) {
    EXPECT_EQ(makeStdcallStub(0, 0, counting(44)).length, 232u);
    EXPECT_EQ(makeCdeclStub(0, counting(44)).length, 236u);
}

TEST(CallStub, forty_five_arguments_are_refused) {
    EXPECT_THROW((void)makeStdcallStub(0, 0, counting(45)), RuntimeError);
    EXPECT_THROW((void)makeCdeclStub(0, counting(45)), RuntimeError);
}

} // namespace
} // namespace corvina
