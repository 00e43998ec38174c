#pragma once

// Operator new that finds no memory. For programs that have ExhaustedMemory.cpp. One object of
// these classes at a time.

namespace corvina::test {

// While one lives no allocation succeeds.
class ExhaustedMemory {
public:
    ExhaustedMemory() noexcept;
    ExhaustedMemory(const ExhaustedMemory&) = delete;
    ExhaustedMemory& operator=(const ExhaustedMemory&) = delete;
    ~ExhaustedMemory();
};

// While one lives its nth allocation (from 1) fails.
class FailingAllocation {
public:
    explicit FailingAllocation(int nth) noexcept;
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    // Whether it failed: there were so many.
    [[nodiscard]] bool struck() const noexcept;
};

} // namespace corvina::test
