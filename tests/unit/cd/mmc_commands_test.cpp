// What came of a drive command.

#include "cd/MmcCommands.h"

#include <array>
#include <gmock/gmock.h>
#include <numeric>

namespace corvina {
namespace {

using testing::ElementsAre;

TEST(CommandResult, holds_the_status_then_the_sense_area_then_zeros) {
    std::array<std::uint8_t, senseAreaBytes> sense{};
    std::iota(sense.begin(), sense.end(), std::uint8_t{0xA1});
    EXPECT_THAT(commandResult(1, sense),
                ElementsAre(1, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xAB,
                            0xAC, 0xAD, 0xAE, 0xAF, 0xB0, 0, 0, 0));
}

TEST(CommandResult, is_done_with_status_1_alone) {
    for (int status = 0; status <= 255; ++status) {
        std::array<std::uint8_t, senseAreaBytes> sense{};
        sense.fill(1);
        EXPECT_EQ(isDone(commandResult(static_cast<std::uint8_t>(status), sense)), status == 1)
            << status;
    }
}

} // namespace
} // namespace corvina
