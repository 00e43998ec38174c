#include "platform/AcmApi.h"
#include "platform/ApiHandle.h"

#include <gmock/gmock.h>
#include <utility>
#include <vector>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HandleOfTable : public testing::Test {
protected:
    struct Table {
        std::vector<int>* closed;
    };
    struct Traits {
        using Api = Table;
        using Handle = int;
        static Handle none() noexcept { return -1; }
        static void close(const Api& api, Handle handle) noexcept { api.closed->push_back(handle); }
    };
    using Owner = ApiHandle<Traits>;

    std::vector<int> closedHere;
    std::vector<int> closedThere;
    const Table here{&closedHere};
    const Table there{&closedThere};
};

TEST_F(HandleOfTable, is_closed_once_when_its_owner_ends) {
    { const Owner owner(here, 5); }
    { const Owner none(here, -1); }
    { const Owner empty; }
    EXPECT_THAT(closedHere, ElementsAre(5));
}

TEST_F(HandleOfTable, that_is_moved_belongs_to_the_new_owner_alone) {
    {
        Owner first(here, 5);
        const Owner second(std::move(first));
        EXPECT_FALSE(first);
        EXPECT_EQ(5, second.get());
        EXPECT_THAT(closedHere, IsEmpty());
    }
    EXPECT_THAT(closedHere, ElementsAre(5));
}

TEST_F(HandleOfTable, that_is_assigned_is_closed_through_its_own_table) {
    {
        Owner first(here, 5);
        Owner second(there, 6);
        second = std::move(first);
        EXPECT_THAT(closedThere, ElementsAre(6)) << "the one before, through its table";
        EXPECT_EQ(5, second.get());
        EXPECT_FALSE(first);
    }
    EXPECT_THAT(closedHere, ElementsAre(5));
    EXPECT_THAT(closedThere, ElementsAre(6));
}

TEST_F(HandleOfTable, that_is_assigned_to_its_own_owner_stays_open) {
    Owner owner(here, 5);
    Owner& same = owner;
    owner = std::move(same);
    EXPECT_EQ(5, owner.get());
    EXPECT_THAT(closedHere, IsEmpty());
}

TEST_F(HandleOfTable, that_is_released_is_the_callers) {
    {
        Owner owner(here, 5);
        EXPECT_EQ(5, owner.release());
        EXPECT_FALSE(owner);
    }
    EXPECT_THAT(closedHere, IsEmpty());
}

std::vector<DWORD> flagsOfClose;

MMRESULT WINAPI closeStream(HACMSTREAM, DWORD flags) {
    flagsOfClose.push_back(flags);
    return MMSYSERR_NOERROR;
}

TEST(ConversionHandle, is_closed_with_no_flags) {
    flagsOfClose.clear();
    AcmApi api;
    api.streamClose = &closeStream;
    { const AcmStream stream(api, reinterpret_cast<HACMSTREAM>(&api)); }
    EXPECT_THAT(flagsOfClose, ElementsAre(0u));
}

} // namespace
} // namespace corvina::test
