#include "graph/RadixTwoTransform.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <emmintrin.h>
#include <numbers>

namespace corvina {
namespace {

// Blocks up to this length (16 KiB) go through all their stages while they are in the first-level
// cache; only the stages beyond pass over the whole data.
constexpr std::size_t cachedLength = 1024;

// The butterfly t = w * high, high = low - t, low = low + t, with both parts of each value side by
// side in one register. Adding (-w.im) * x rounds exactly as subtracting w.im * x does.
inline void butterfly(Complex& low, Complex& high, __m128d twiddleRe, __m128d twiddleIm) noexcept {
    const __m128d a = _mm_load_pd(&low.re);
    const __m128d b = _mm_load_pd(&high.re);
    const __m128d bSwapped = _mm_shuffle_pd(b, b, 1);
    const __m128d t = _mm_add_pd(_mm_mul_pd(twiddleRe, b), _mm_mul_pd(twiddleIm, bSwapped));
    _mm_store_pd(&high.re, _mm_sub_pd(a, t));
    _mm_store_pd(&low.re, _mm_add_pd(a, t));
}

// Joins neighbouring blocks of half values. The block is the inner loop, so each twiddle factor is
// computed once for a stage and not once for each block.
void runStage(std::span<Complex> data, std::size_t half, TwiddleRotation rotation) noexcept {
    const std::size_t size = 2 * half;
    double re = 1.0;
    double im = 0.0;
    for (std::size_t k = 0; k < half; ++k) {
        const __m128d twiddleRe = _mm_set1_pd(re);
        const __m128d twiddleIm = _mm_set_pd(im, -im);
        for (std::size_t low = k; low < data.size(); low += size)
            butterfly(data[low], data[low + half], twiddleRe, twiddleIm);
        const double change = rotation.alpha * re + rotation.beta * im;
        im = im + rotation.beta * re - rotation.alpha * im;
        re = re - change;
    }
}

} // namespace

RadixTwoTransform::RadixTwoTransform(std::int32_t size) {
    const double pi = std::numbers::pi;
    const double twoPi = 2.0 * pi;
    for (std::int64_t joined = 2; joined <= size; joined *= 2) {
        const double halfAngleSine = std::sin(pi / static_cast<double>(joined));
        stages_.push_back({.alpha = 2.0 * (halfAngleSine * halfAngleSine),
                           .beta = std::sin(twoPi / static_cast<double>(joined))});
    }
}

void RadixTwoTransform::run(std::span<Complex> data) const noexcept {
    const std::size_t blockLength = std::min(data.size(), cachedLength);
    for (std::size_t start = 0; start < data.size(); start += blockLength) {
        const auto block = data.subspan(start, blockLength);
        for (std::size_t stage = 0; std::size_t{1} << stage < blockLength; ++stage)
            runStage(block, std::size_t{1} << stage, stages_[stage]);
    }
    for (std::size_t half = blockLength, stage = 0; half < data.size(); half *= 2) {
        while (std::size_t{1} << stage < half)
            ++stage;
        runStage(data, half, stages_[stage]);
    }
}

} // namespace corvina
