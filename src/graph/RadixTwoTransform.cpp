#include "graph/RadixTwoTransform.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <emmintrin.h>
#include <numbers>

namespace corvina {
namespace {

// Blocks up to this length (16 KiB) go through all their stages while they are in the first-level
// cache; only the stages beyond pass over the whole data.
constexpr std::size_t cachedLength = 1024;

// The value with its parts the other way round.
inline __m128d swapped(__m128d value) noexcept {
    return _mm_shuffle_pd(value, value, 1);
}

// Two values of a transform, both parts of each side by side in one register.
struct Values {
    __m128d low;
    __m128d high;
};

// A twiddle factor, ready for products: re twice, and -im beside im.
struct Factor {
    __m128d re;
    __m128d im;
};

// t = w * high, high = low - t, low = low + t. Adding (-w.im) * x rounds exactly as subtracting
// w.im * x does.
inline Values butterfly(Values values, Factor w) noexcept {
    const __m128d t =
        _mm_add_pd(_mm_mul_pd(w.re, values.high), _mm_mul_pd(w.im, swapped(values.high)));
    return {_mm_add_pd(values.low, t), _mm_sub_pd(values.low, t)};
}

// Two twiddle factors that advance together, by the same or by different angles.
class Rotation {
public:
    Rotation(TwiddleRotation first, TwiddleRotation second) noexcept
        : alpha_(_mm_set_pd(second.alpha, first.alpha)),
          beta_(_mm_set_pd(second.beta, first.beta)) {}

    void advance() noexcept {
        const __m128d change = _mm_add_pd(_mm_mul_pd(alpha_, re_), _mm_mul_pd(beta_, im_));
        im_ = _mm_sub_pd(_mm_add_pd(im_, _mm_mul_pd(beta_, re_)), _mm_mul_pd(alpha_, im_));
        re_ = _mm_sub_pd(re_, change);
    }
    // The first begins anew, at the angle 0.
    void restartFirst() noexcept {
        re_ = _mm_move_sd(re_, _mm_set1_pd(1.0));
        im_ = _mm_move_sd(im_, _mm_setzero_pd());
    }
    [[nodiscard]] Factor first() const noexcept {
        return factor(_mm_unpacklo_pd(re_, re_), _mm_unpacklo_pd(im_, im_));
    }
    [[nodiscard]] Factor second() const noexcept {
        return factor(_mm_unpackhi_pd(re_, re_), _mm_unpackhi_pd(im_, im_));
    }

private:
    static Factor factor(__m128d re, __m128d im) noexcept {
        return {re, _mm_xor_pd(im, _mm_set_pd(0.0, -0.0))};
    }

    __m128d alpha_;
    __m128d beta_;
    __m128d re_ = _mm_set1_pd(1.0);
    __m128d im_ = _mm_setzero_pd();
};

inline __m128d load(const Complex& value) noexcept {
    return _mm_load_pd(&value.re);
}

inline void store(Complex& value, __m128d parts) noexcept {
    _mm_store_pd(&value.re, parts);
}

// Joins neighbouring blocks of half values. The block is the inner loop, so each twiddle factor is
// computed once for a stage and not once for each block.
void runStage(std::span<Complex> data, std::size_t half, TwiddleRotation rotation) noexcept {
    Rotation twiddle(rotation, rotation);
    for (std::size_t k = 0; k < half; ++k) {
        const Factor w = twiddle.first();
        for (std::size_t at = k; at < data.size(); at += 2 * half) {
            const Values joined = butterfly({load(data[at]), load(data[at + half])}, w);
            store(data[at], joined.low);
            store(data[at + half], joined.high);
        }
        twiddle.advance();
    }
}

// That stage and the next in one pass: each value is loaded and stored once for both, and the
// factors, of which each waits for the one before it, advance side by side.
void runTwoStages(std::span<Complex> data, std::size_t half, TwiddleRotation rotation,
                  TwiddleRotation next) noexcept {
    // The next stage needs its factors of k and of k + half at the same time.
    Rotation nextTwiddles(next, next);
    for (std::size_t k = 0; k < half; ++k)
        nextTwiddles.advance();
    nextTwiddles.restartFirst();
    Rotation twiddle(rotation, rotation);
    for (std::size_t k = 0; k < half; ++k) {
        const Factor w = twiddle.first();
        const Factor nextW = nextTwiddles.first();
        const Factor nextWOfHalf = nextTwiddles.second();
        for (std::size_t at = k; at < data.size(); at += 4 * half) {
            Complex* const block = &data[at];
            const Values first = butterfly({load(block[0]), load(block[half])}, w);
            const Values second = butterfly({load(block[2 * half]), load(block[3 * half])}, w);
            const Values low = butterfly({first.low, second.low}, nextW);
            const Values high = butterfly({first.high, second.high}, nextWOfHalf);
            store(block[0], low.low);
            store(block[half], high.low);
            store(block[2 * half], low.high);
            store(block[3 * half], high.high);
        }
        twiddle.advance();
        nextTwiddles.advance();
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
    const auto cachedStages = static_cast<std::size_t>(std::countr_zero(blockLength));
    for (std::size_t start = 0; start < data.size(); start += blockLength)
        runStages(data.subspan(start, blockLength), 0, cachedStages);
    runStages(data, cachedStages, static_cast<std::size_t>(std::countr_zero(data.size())));
}

void RadixTwoTransform::runStages(std::span<Complex> data, std::size_t stage,
                                  std::size_t end) const noexcept {
    for (; stage + 1 < end; stage += 2)
        runTwoStages(data, std::size_t{1} << stage, stages_[stage], stages_[stage + 1]);
    if (stage < end)
        runStage(data, std::size_t{1} << stage, stages_[stage]);
}

} // namespace corvina
