// The backend that the CD manager chooses, and what it returns without one.

#include "ManagerFixture.h"
#include "runtime/RuntimeError.h"
#include "support/Limits.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace corvina::test {
namespace {

using testing::ElementsAre;

// Choosing a backend

class CdManagerChoice : public testing::Test {
protected:
    FakeBackends fakes;
    bool disableIoctl = false;

    bool chooses() {
        cdManager manager(fakes.makers());
        return manager.InitManager(disableIoctl);
    }
    [[nodiscard]] std::vector<std::string> initialised() const {
        std::vector<std::string> result;
        for (const std::string& line : fakes.log)
            if (line.ends_with(" InitMe"))
                result.push_back(line.substr(0, line.find(' ')));
        return result;
    }
};

TEST_F(CdManagerChoice, is_scsi_pass_through_first_and_no_other_is_initialised) {
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI"));
}

TEST_F(CdManagerChoice, falls_to_device_io_control) {
    fakes.spti = 4;
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "IOCTL"));
}

TEST_F(CdManagerChoice, falls_to_aspi_last) {
    fakes.spti = fakes.ioctl = 4;
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "IOCTL", "ASPI"));
}

TEST_F(CdManagerChoice, is_none_when_all_fail) {
    fakes.spti = fakes.ioctl = fakes.aspi = 4;
    EXPECT_FALSE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "IOCTL", "ASPI"));
}

TEST_F(CdManagerChoice, passes_over_device_io_control_if_it_is_disabled) {
    disableIoctl = true;
    fakes.spti = 4;
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "ASPI"));
}

TEST_F(CdManagerChoice, takes_any_other_status_for_a_failure) {
    fakes.spti = -1;
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "IOCTL"));
}

TEST_F(CdManagerChoice, releases_a_failed_backend_without_DeInitMe_before_it_tries_the_next) {
    fakes.spti = 4;
    chooses();
    EXPECT_THAT(fakes.log,
                ElementsAre("SPTI made", "IOCTL made", "ASPI made", "SPTI InitMe", "SPTI gone",
                            "IOCTL InitMe", "IOCTL DeInitMe", "IOCTL gone", "ASPI gone"));
}

TEST_F(CdManagerChoice, can_be_made_again_from_nothing) {
    cdManager manager(fakes.makers());
    EXPECT_TRUE(manager.InitManager());
    fakes.log.clear();
    EXPECT_TRUE(manager.InitManager());
    EXPECT_THAT(initialised(), ElementsAre("SPTI"));
    fakes.spti = fakes.ioctl = fakes.aspi = 4;
    EXPECT_FALSE(manager.InitManager());
    EXPECT_EQ(manager.DeviceCount(), 0);
}

TEST_F(CdManagerChoice, of_none_leaves_nothing_to_deinitialise) {
    fakes.spti = fakes.ioctl = fakes.aspi = 4;
    chooses();
    for (const std::string& line : fakes.log)
        EXPECT_FALSE(line.ends_with("DeInitMe")) << line;
}

// Without a backend

class CdManagerWithoutBackend : public testing::Test {
protected:
    FakeBackends fakes;
    cdManager manager{fakes.makers()};
};

TEST_F(CdManagerWithoutBackend, returns_false_0_and_empty_text) {
    EXPECT_FALSE(manager.SelectDevice(0));
    EXPECT_EQ(manager.DeviceCount(), 0);
    for (const std::int32_t index : {0, -1, highest}) {
        EXPECT_EQ(manager.DeviceName(index), L"");
        EXPECT_EQ(manager.DeviceChar(index), L"");
    }
    EXPECT_FALSE(manager.OpenCD());
    EXPECT_FALSE(manager.CloseCD());
    EXPECT_FALSE(manager.IsDiscPresent());
}

TEST_F(CdManagerWithoutBackend, a_table_is_an_object_that_is_not_set) {
    try {
        static_cast<void>(manager.GetTOC());
        FAIL() << "nothing was raised";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 91);
    }
}

TEST_F(CdManagerWithoutBackend, no_track_can_be_selected) {
    EXPECT_EQ(manager.SelectTrack(1), 3);
}

TEST_F(CdManagerWithoutBackend, a_read_finds_the_end_at_once) {
    char byte = 0;
    std::int32_t got = 0;
    EXPECT_EQ(manager.Read(&byte, 1, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(manager.EndOfStream());
}

TEST_F(CdManagerWithoutBackend, that_was_there_before_a_read_fails) {
    fakes.machine.drives = {disc()};
    ASSERT_TRUE(manager.InitManager());
    ASSERT_EQ(manager.SelectTrack(1), 0);
    fakes.spti = fakes.ioctl = fakes.aspi = 4;
    ASSERT_FALSE(manager.InitManager());
    char byte = 0;
    std::int32_t got = 0;
    EXPECT_EQ(manager.Read(&byte, 1, got), 5);
}

} // namespace
} // namespace corvina::test
