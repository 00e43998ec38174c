#include "graph/clsFourier.h"

#include "runtime/BitReversal.h"
#include "runtime/OutOfMemory.h"
#include "runtime/RuntimeError.h"

#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

namespace corvina {
namespace {

// In fixed precision an operation that overflows, or has no result, leaves an infinity or a NaN,
// and every sum and product after it does too; so looking at the result finds any fault on the way.
double finite(double value) {
    if (!std::isfinite(value))
        throwOverflow();
    return value;
}

// Stands for a weight that was not computed yet: none is above 1.
constexpr double noWeight = 2.0;

bool allFinite(const std::vector<Complex>& values) noexcept {
    double faults = 0.0; // 0 * value is 0 for every finite value and NaN for any other
    for (const Complex& value : values)
        faults += 0.0 * value.re + 0.0 * value.im;
    return faults == 0.0;
}

} // namespace

clsFourier::clsFourier(const PerformanceCounterApi& counter) : counter_(counter) {
    fillBitReversalTable();
    counter_.frequency(&frequency_);
}

void clsFourier::NumberOfSamples(std::int32_t count) {
    if (count < 2 || (count & (count - 1)) != 0)
        return;
    std::vector<Complex> data;
    if (static_cast<std::size_t>(count) > data.max_size())
        throwOutOfMemory();
    data.resize(static_cast<std::size_t>(count));
    std::vector<double> weights(data.size(), noWeight);
    RadixTwoTransform transform(count);
    data_ = std::move(data);
    weights_ = std::move(weights);
    transform_ = std::move(transform);
    bits_ = std::countr_zero(static_cast<std::uint32_t>(count));
    dirty_ = true;
}

std::int32_t clsFourier::NumberOfSamples() const noexcept {
    return static_cast<std::int32_t>(data_.size());
}

void clsFourier::RealIn(std::int32_t index, double value) {
    Complex& sample = input(index);
    sample = {finite(timeWindow_ != 0 ? value * weight(index) : value / 2.0), 0.0};
    dirty_ = true;
}

void clsFourier::ImagIn(std::int32_t index, double value) {
    input(index).im = finite(value);
    dirty_ = true;
}

double clsFourier::RealOut(std::int32_t index) {
    return finite(output(index).re);
}

double clsFourier::ImagOut(std::int32_t index) {
    return finite(output(index).im);
}

double clsFourier::ComplexOut(std::int32_t index) {
    const Complex& bin = output(index);
    return finite(std::sqrt(bin.re * bin.re + bin.im * bin.im));
}

float clsFourier::Timing() const noexcept {
    return static_cast<float>(static_cast<double>(ended_.QuadPart - started_.QuadPart) /
                              static_cast<double>(frequency_.QuadPart) * 1000.0);
}

// The Blackman window. Its divisor is the highest index, not the count, so both the first and the
// last sample have the weight 0. Each weight is kept: a picture needs a thousand of them, whose
// cosines would take longer than its transform.
double clsFourier::weight(std::int32_t index) noexcept {
    double& kept = weights_[static_cast<std::size_t>(index - 1)];
    if (kept == noWeight) {
        const double twoPi = 2.0 * std::numbers::pi;
        const double angle = (index - 1) * twoPi / (NumberOfSamples() - 1);
        kept = 0.42 - 0.5 * std::cos(angle) + 0.08 * std::cos(2.0 * angle);
    }
    return kept;
}

Complex& clsFourier::input(std::int32_t index) {
    checkIndex(index);
    const auto position = static_cast<std::uint32_t>(index - 1);
    if (bits_ > bitReversalTableBits)
        return data_[reverseBits(position, bits_)];
    // Fewer bits reversed are the upper part of the ten bits reversed.
    return data_[static_cast<std::size_t>(bitReversalTable()[position] >>
                                          (bitReversalTableBits - bits_))];
}

const Complex& clsFourier::output(std::int32_t index) {
    checkIndex(index);
    if (dirty_)
        transform();
    return data_[static_cast<std::size_t>(index - 1)];
}

void clsFourier::checkIndex(std::int32_t index) const {
    if (index < 1 || index > NumberOfSamples())
        throw RuntimeError(381, L"Index out of range or number of samples unknown");
}

void clsFourier::transform() {
    dirty_ = false;
    counter_.count(&started_);
    transform_->run(data_);
    counter_.count(&ended_);
    if (!allFinite(data_))
        throwOverflow();
}

} // namespace corvina
