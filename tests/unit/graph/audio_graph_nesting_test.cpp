// What may happen to the graph within a display, and after one that failed.

#include "GraphFixture.h"

#include <new>

namespace corvina::test {
namespace {

TEST_F(Graph, a_display_within_a_display_does_nothing) {
    take(sineBlock(53, 32767));
    settings_.style = GraphStyle::amplitude;
    int columns = 0;
    graph_.display(settings_, size_, [&] {
        ++columns;
        graph_.display(settings_, size_, [&] { ADD_FAILURE(); });
    });
    EXPECT_EQ(columns, 401);
    graph_.display(settings_, size_, [&] { ++columns; });
    EXPECT_EQ(columns, 802);
}

TEST_F(Graph, everything_else_may_happen_within_a_display) {
    settings_.style = GraphStyle::amplitude;
    take(sineBlock(53, 32767));
    int columns = 0;
    graph_.display(settings_, size_, [&] {
        switch (columns++ % 4) {
        case 0:
            take(std::vector<std::int16_t>(511, 16384));
            break;
        case 1:
            graph_.clear(settings_);
            break;
        case 2:
            graph_.paint(canvas_.dc(), {0, 0, 77, 33}, {77, 33});
            break;
        default:
            settings_.backgroundColor = blue;
            settings_.border = true;
            break;
        }
    });
    settings_ = {};
    paint();
    EXPECT_EQ(pixel(200, 149), green);
}

TEST_F(Graph, a_picture_painted_within_a_display_is_the_one_before) {
    take(sineBlock(53, 32767));
    display();
    settings_.style = GraphStyle::amplitude;
    graph_.display(settings_, size_, [&] {
        static int columns;
        if (++columns == 200) {
            paint();
            EXPECT_EQ(barHeight(40, green), 200);
        }
    });
}

TEST_F(Graph, a_display_that_fails_can_be_repeated) {
    settings_.style = GraphStyle::amplitude;
    EXPECT_THROW(graph_.display(settings_, size_, [] { throw std::bad_alloc(); }), std::bad_alloc);
    display();
    EXPECT_EQ(count(green), 400);
}

} // namespace
} // namespace corvina::test
