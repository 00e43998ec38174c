// The client of sound-card notifications that nothing uses.

#include "player/cDXCallback.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

TEST(DXCallback, takes_no_notice_of_an_event) {
    cDXCallback callback;
    callback.OnEvent(1);
    EXPECT_TRUE(callback.MyEvents().empty());
}

} // namespace
} // namespace corvina::test
