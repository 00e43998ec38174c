#include "PlayList.h"

#include <gtest/gtest.h>
#include <set>

namespace corvina::app {
namespace {

using Files = std::vector<std::wstring>;

Files filesOf(const PlayList& list) {
    Files files;
    for (const Track& track : list.tracks())
        files.push_back(track.file);
    return files;
}

PlayList listOf(const Files& files) {
    PlayList list(1);
    for (const std::wstring& file : files)
        list.add(file);
    return list;
}

TEST(PlayList, ends_after_its_last_file) {
    PlayList list = listOf({L"a", L"b"});
    EXPECT_EQ(list.after(0), 1u);
    EXPECT_FALSE(list.after(1));
    EXPECT_FALSE(PlayList(1).after(0));
}

TEST(PlayList, begins_again_if_it_is_repeated) {
    PlayList list = listOf({L"a", L"b"});
    list.setRepeated(true);
    EXPECT_EQ(list.after(1), 0u);
}

TEST(PlayList, goes_back_to_the_file_before_and_stays_at_the_first) {
    PlayList list = listOf({L"a", L"b", L"c"});
    EXPECT_EQ(list.before(2), 1u);
    EXPECT_EQ(list.before(0), 0u);
}

TEST(PlayList, moves_a_file_down_and_up) {
    PlayList list = listOf({L"a", L"b", L"c", L"d"});
    list.move(0, 2);
    EXPECT_EQ(filesOf(list), (Files{L"b", L"c", L"a", L"d"}));
    list.move(3, 0);
    EXPECT_EQ(filesOf(list), (Files{L"d", L"b", L"c", L"a"}));
    list.move(1, 1);
    list.move(9, 0);
    list.move(0, 9);
    EXPECT_EQ(filesOf(list), (Files{L"d", L"b", L"c", L"a"}));
}

TEST(PlayList, knows_where_every_file_is_after_a_move) {
    const Files before{L"a", L"b", L"c", L"d", L"e"};
    for (std::size_t from = 0; from < 5; ++from)
        for (std::size_t to = 0; to < 5; ++to) {
            PlayList list = listOf(before);
            list.move(from, to);
            for (std::size_t index = 0; index < 5; ++index)
                EXPECT_EQ(filesOf(list)[PlayList::movedIndex(index, from, to)], before[index]);
        }
}

TEST(PlayList, a_failure_stays_with_its_file) {
    PlayList list = listOf({L"a", L"b", L"c"});
    list.setFailure(1, L"damaged");
    list.move(1, 2);
    EXPECT_EQ(list.failure(2), L"damaged");
    list.remove(0);
    EXPECT_EQ(list.failure(1), L"damaged");
    EXPECT_EQ(list.failure(0), L"");
    list.setFailure(1, L"");
    EXPECT_EQ(list.failure(1), L"");
    list.setFailure(9, L"nobody");
}

TEST(PlayList, shuffled_takes_each_file_once) {
    PlayList list = listOf({L"a", L"b", L"c", L"d", L"e"});
    list.setShuffled(true);
    std::set<std::size_t> tried;
    for (std::optional<std::size_t> index = 2; index; index = list.after(*index)) {
        list.markPlayed(*index);
        EXPECT_TRUE(tried.insert(*index).second) << *index;
    }
    EXPECT_EQ(tried.size(), 5u);
}

TEST(PlayList, shuffled_and_repeated_goes_on_without_a_file_twice_in_a_row) {
    PlayList list = listOf({L"a", L"b", L"c"});
    list.setShuffled(true);
    list.setRepeated(true);
    std::size_t index = 0;
    for (int round = 0; round < 300; ++round) {
        list.markPlayed(index);
        const auto next = list.after(index);
        ASSERT_TRUE(next);
        EXPECT_NE(*next, index);
        index = *next;
    }
    PlayList one = listOf({L"a"});
    one.setShuffled(true);
    one.setRepeated(true);
    one.markPlayed(0);
    EXPECT_EQ(one.after(0), 0u);
}

TEST(PlayList, shuffled_goes_back_the_way_it_came) {
    PlayList list = listOf({L"a", L"b", L"c", L"d"});
    list.setShuffled(true);
    for (const std::size_t index : {2u, 0u, 3u})
        list.markPlayed(index);
    EXPECT_EQ(list.before(3), 0u);
    list.markPlayed(0);
    EXPECT_EQ(list.before(0), 2u);
    list.markPlayed(2);
    EXPECT_EQ(list.before(2), 2u);
}

TEST(PlayList, shuffled_orders_differ) {
    std::set<std::vector<std::size_t>> orders;
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        PlayList list(seed);
        for (int count = 0; count < 6; ++count)
            list.add(std::wstring(L"x"));
        list.setShuffled(true);
        std::vector<std::size_t> order;
        for (std::optional<std::size_t> index = 0; index; index = list.after(*index)) {
            list.markPlayed(*index);
            order.push_back(*index);
        }
        orders.insert(order);
    }
    EXPECT_GT(orders.size(), 10u);
}

TEST(PlayList, finds_a_track_again_wherever_it_was_moved) {
    PlayList list = listOf({L"a", L"b", L"c"});
    const std::uint32_t id = list.idOf(0);
    list.move(0, 2);
    EXPECT_EQ(list.indexOf(id), 2u);
    list.remove(0);
    EXPECT_EQ(list.indexOf(id), 1u);
    list.remove(1);
    EXPECT_EQ(list.indexOf(id), std::nullopt);
}

// What follows is asked for while a track still plays, and again when the list changes.
TEST(PlayList, shuffled_a_new_round_does_not_begin_with_the_track_that_plays) {
    for (std::uint32_t seed = 1; seed < 50; ++seed) {
        PlayList list(seed);
        for (const wchar_t* name : {L"a", L"b"})
            list.add(std::wstring(name));
        list.setShuffled(true);
        list.setRepeated(true);
        list.markPlayed(0);
        list.markPlayed(1);
        EXPECT_EQ(list.after(1), 0u);
        EXPECT_EQ(list.after(1), 0u);
    }
}

TEST(Track, runs_into_the_part_of_its_file_that_begins_where_it_ends) {
    const Track first(L"a.wav", 0, 1000, L"One");
    EXPECT_TRUE(first.runsInto(Track(L"a.wav", 1000, 0, L"Two")));
    EXPECT_FALSE(first.runsInto(Track(L"a.wav", 1001, 0, L"Two")));
    EXPECT_FALSE(first.runsInto(Track(L"b.wav", 1000, 0, L"Two")));
    EXPECT_FALSE(Track(std::wstring(L"a.wav")).runsInto(Track(std::wstring(L"a.wav"))));
    EXPECT_EQ(nameOf(first), L"One");
    EXPECT_EQ(nameOf(Track(std::wstring(L"C:\\music\\a.wav"))), L"a.wav");
}

} // namespace
} // namespace corvina::app
