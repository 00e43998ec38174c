// When the transform runs, and the time that it reports.

#include "graph/clsFourier.h"
#include "support/ErrorNumber.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

using test::errorNumberOf;

// A counter three ticks further at each call.
int counterReads;
BOOL WINAPI thousandTicks(LARGE_INTEGER* frequency) {
    frequency->QuadPart = 1000;
    return TRUE;
}
BOOL WINAPI fourThousandTicks(LARGE_INTEGER* frequency) {
    frequency->QuadPart = 4000;
    return TRUE;
}
BOOL WINAPI nextTick(LARGE_INTEGER* count) {
    count->QuadPart = 1'000'000'000'000 + 3LL * counterReads++;
    return TRUE;
}

TEST(Fourier, outputs_read_twice_are_transformed_once) {
    const PerformanceCounterApi counter{&thousandTicks, &nextTick};
    counterReads = 0;
    clsFourier fourier(counter);
    fourier.NumberOfSamples(8);
    fourier.RealIn(2, 1.0);
    EXPECT_EQ(counterReads, 0);
    EXPECT_EQ(fourier.Timing(), 0.0F);
    const double first = fourier.RealOut(3);
    EXPECT_EQ(fourier.RealOut(3), first);
    (void)fourier.ComplexOut(1);
    EXPECT_EQ(counterReads, 2);
    EXPECT_EQ(fourier.Timing(), 3.0F);
}

TEST(Fourier, a_written_sample_brings_a_new_transform) {
    const PerformanceCounterApi counter{&thousandTicks, &nextTick};
    counterReads = 0;
    clsFourier fourier(counter);
    fourier.NumberOfSamples(8);
    (void)fourier.RealOut(1);
    fourier.RealIn(2, 1.0);
    (void)fourier.RealOut(1);
    fourier.ImagIn(2, 1.0);
    (void)fourier.RealOut(1);
    EXPECT_EQ(counterReads, 6);
}

TEST(Fourier, a_refused_index_brings_no_transform) {
    const PerformanceCounterApi counter{&thousandTicks, &nextTick};
    counterReads = 0;
    clsFourier fourier(counter);
    fourier.NumberOfSamples(8);
    EXPECT_EQ(errorNumberOf([&] { (void)fourier.RealOut(9); }), 381);
    EXPECT_EQ(counterReads, 0);
}

TEST(Fourier, the_time_is_in_milliseconds_whatever_the_counters_frequency) {
    const PerformanceCounterApi counter{&fourThousandTicks, &nextTick};
    counterReads = 0;
    clsFourier fourier(counter);
    fourier.NumberOfSamples(8);
    (void)fourier.RealOut(1);
    EXPECT_EQ(fourier.Timing(), 0.75F);
}

TEST(Fourier, the_time_is_measured_with_the_systems_counter) {
    clsFourier fourier;
    fourier.NumberOfSamples(65536);
    (void)fourier.RealOut(1);
    EXPECT_GT(fourier.Timing(), 0.0F);
}

} // namespace
} // namespace corvina
