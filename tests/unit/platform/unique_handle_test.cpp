#include "platform/UniqueHandle.h"

#include <gmock/gmock.h>
#include <utility>
#include <vector>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OwnedHandle : public testing::Test {
protected:
    struct Traits {
        using Handle = int;
        static constexpr Handle none = -1;
        static void close(Handle handle) noexcept { closed.push_back(handle); }
    };
    using Owner = UniqueHandle<Traits>;

    void SetUp() override { closed.clear(); }

    inline static std::vector<int> closed;
};

TEST_F(OwnedHandle, is_closed_once_when_its_owner_ends) {
    { const Owner owner(5); }
    EXPECT_THAT(closed, ElementsAre(5));
}

TEST_F(OwnedHandle, that_is_none_is_not_closed) {
    {
        const Owner empty;
        const Owner none(-1);
        EXPECT_FALSE(empty);
        EXPECT_FALSE(none);
        EXPECT_TRUE(Owner(0)) << "0 is a handle if none is another";
    }
    EXPECT_THAT(closed, ElementsAre(0));
}

TEST_F(OwnedHandle, that_is_moved_belongs_to_the_new_owner_alone) {
    Owner first(5);
    Owner second(std::move(first));
    EXPECT_EQ(-1, first.get());
    EXPECT_EQ(5, second.get());
    EXPECT_THAT(closed, IsEmpty());
}

TEST_F(OwnedHandle, that_is_assigned_closes_the_one_before) {
    Owner first(5);
    Owner second(6);
    second = std::move(first);
    EXPECT_THAT(closed, ElementsAre(6));
    EXPECT_EQ(5, second.get());
    EXPECT_FALSE(first);
}

TEST_F(OwnedHandle, that_is_assigned_to_its_own_owner_stays_open) {
    Owner owner(5);
    Owner& same = owner;
    owner = std::move(same);
    EXPECT_EQ(5, owner.get());
    EXPECT_THAT(closed, IsEmpty());
}

TEST_F(OwnedHandle, that_is_released_is_the_callers) {
    {
        Owner owner(5);
        EXPECT_EQ(5, owner.release());
        EXPECT_FALSE(owner);
    }
    EXPECT_THAT(closed, IsEmpty());
}

TEST_F(OwnedHandle, that_is_reset_gives_way_to_the_next_one) {
    Owner owner(5);
    owner.reset(6);
    EXPECT_THAT(closed, ElementsAre(5));
    EXPECT_EQ(6, owner.get());
    owner.reset();
    EXPECT_THAT(closed, ElementsAre(5, 6));
    EXPECT_FALSE(owner);
}

TEST_F(OwnedHandle, is_closed_before_a_function_puts_another_in_its_place) {
    Owner owner(5);
    int* const place = owner.put();
    EXPECT_THAT(closed, ElementsAre(5));
    EXPECT_EQ(-1, *place);
    *place = 6;
    EXPECT_EQ(6, owner.get());
}

} // namespace
} // namespace corvina::test
