// Looks over all heaps of a test program after each of its tests. Add this file to a corvina_test's
// SOURCES. By itself a heap notices little; started by tools/check-heap it notices a byte behind a
// block and one in a freed block, which is proved before the tests.

#include "support/ProcessObjects.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

// What is written there is not noticed if it is put right again at once.
bool noticesWrite(HANDLE heap, volatile std::uint8_t& place) {
    const std::uint8_t old = place;
    place = static_cast<std::uint8_t>(~old);
    const bool noticed = !::HeapValidate(heap, 0, nullptr);
    place = old;
    return noticed;
}

class CheckedHeaps : public testing::Environment {
public:
    void SetUp() override {
        if (!heapsAreChecked())
            return;
        for (const HANDLE heap : processHeaps())
            for (const std::size_t size : {10u, 100u, 1000u, 100'000u}) {
                if (size < 1000 && groupsSmallBlocks(heap))
                    continue;
                auto* const block = static_cast<std::uint8_t*>(::HeapAlloc(heap, 0, size));
                ASSERT_TRUE(noticesWrite(heap, block[size])) << size;
                ASSERT_TRUE(::HeapFree(heap, 0, block));
                ASSERT_TRUE(noticesWrite(heap, block[size / 2])) << size;
            }
    }
};

class HeapWatch : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override {
        EXPECT_TRUE(heapsAreWhole()) << "somebody wrote outside of their memory";
    }
};

[[maybe_unused]] const bool watching = [] {
    testing::AddGlobalTestEnvironment(new CheckedHeaps);
    testing::UnitTest::GetInstance()->listeners().Append(new HeapWatch);
    return true;
}();

} // namespace
} // namespace corvina::test
