// The 1024-point transform compared with KissFFT's double-precision complex one, built with the
// same flags and run in turns with it.

#include "Figure.h"
#include "graph/RadixTwoTransform.h"
#include "runtime/BitReversal.h"

#include <cmath>
#include <kiss_fft.h>
#include <vector>

namespace {

constexpr int size = 1024;

double sample(int i) {
    return std::sin(0.37 * i) + 0.25 * std::cos(2.9 * i);
}

} // namespace

int main() {
    using namespace corvina;

    const kiss_fft_cfg plan = kiss_fft_alloc(size, 1, nullptr, nullptr);
    std::vector<kiss_fft_cpx> in(size), out(size);
    const RadixTwoTransform transform(size);
    std::vector<Complex> samples(size), spectrum(size);
    for (std::size_t i = 0; i < size; ++i) {
        in[i] = {sample(static_cast<int>(i)), 0.0};
        samples[reverseBits(static_cast<std::uint32_t>(i), 10)] = {in[i].r, 0.0};
    }

    double sum = 0.0; // of the results, so that the compiler leaves nothing out
    const auto kiss = [&] {
        kiss_fft(plan, in.data(), out.data());
        sum += out[1].r;
    };
    // It works in place, so its input is copied for each run; the copy counts.
    const auto ours = [&] {
        spectrum = samples;
        transform.run(spectrum);
        sum += spectrum[1].re;
    };
    constexpr int transforms = 50;
    const auto microseconds = [](const auto& transformOnce) {
        return [&transformOnce] {
            return 1e6 / transforms * bench::secondsFor([&] {
                       for (int i = 0; i < transforms; ++i)
                           transformOnce();
                   });
        };
    };
    const bench::Pair time = bench::interleaved(201, microseconds(ours), microseconds(kiss));
    kiss_fft_free(plan);
    bench::report("1024-point transform beside KissFFT's double complex one", "us", time.value,
                  time.reference, time.ratio, bench::Judged::ratioAtMost, 0.7);
    // Both must have computed the same.
    return std::fabs(spectrum[7].re - out[7].r) < 1e-9 && std::isfinite(sum) ? 0 : 1;
}
