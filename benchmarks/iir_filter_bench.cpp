// A pass of the filter compared with the same arithmetic written as a plain loop.

#include "Figure.h"
#include "graph/cIIRFilter.h"

#include <cmath>
#include <vector>

namespace {

using namespace corvina;

struct PlainFilter {
    float b0, b1, b2, a1, a2;
    float x1 = 0, x2 = 0, y1 = 0, y2 = 0;
};

[[gnu::noinline]] void plainLoop(PlainFilter& f, std::int16_t* samples, std::int32_t lastIndex) {
    for (std::int32_t i = 0; i <= lastIndex; ++i) {
        const float x = static_cast<float>(samples[i]) / 32767.0F;
        const float y = f.b0 * x + f.b1 * f.x1 + f.b2 * f.x2 - f.a1 * f.y1 - f.a2 * f.y2;
        f.x2 = f.x1;
        f.x1 = x;
        f.y2 = f.y1;
        f.y1 = y;
        if (y > 1.0F)
            samples[i] = 32767;
        else if (y < -1.0F)
            samples[i] = -32768;
        else
            samples[i] = static_cast<std::int16_t>(std::lrint(y * 32767.0F));
    }
}

} // namespace

int main() {
    // An all-pass: the signal neither fades nor grows from pass to pass.
    constexpr BiquadCoefficients allPass{0.4128F, -1.143F, 1.0F, -1.143F, 0.4128F};
    std::vector<std::int16_t> samples(4000);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(8000.0 * std::sin(0.11 * static_cast<double>(i)));
    std::vector<std::int16_t> plainSamples = samples;

    cIIRFilter filter;
    filter.SetCoefficients(allPass);
    PlainFilter plain{allPass.b0, allPass.b1, allPass.b2, allPass.a1, allPass.a2};
    const auto lastIndex = static_cast<std::int32_t>(samples.size()) - 1;
    constexpr int passes = 10;
    const auto nanosecondsPerSample = [&](auto pass) {
        return [&samples, pass] {
            return 1e9 / passes / static_cast<double>(samples.size()) * bench::secondsFor([&] {
                       for (int i = 0; i < passes; ++i)
                           pass();
                   });
        };
    };
    const bench::Pair time = bench::interleaved(
        201, nanosecondsPerSample([&] { filter.ProcessSamples(samples, lastIndex); }),
        nanosecondsPerSample([&] { plainLoop(plain, plainSamples.data(), lastIndex); }));
    // Both wait for the same chain of operations from output to output; 2 % is for measuring.
    bench::report("filter pass beside the plain loop", "ns a sample", time.value, time.reference,
                  time.ratio, bench::Judged::ratioAtMost, 1.02);
    return samples == plainSamples ? 0 : 1;
}
