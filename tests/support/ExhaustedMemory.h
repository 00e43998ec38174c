#pragma once

// While one lives operator new finds no memory. For programs that have ExhaustedMemory.cpp.

namespace corvina::test {

class ExhaustedMemory {
public:
    ExhaustedMemory() noexcept;
    ExhaustedMemory(const ExhaustedMemory&) = delete;
    ExhaustedMemory& operator=(const ExhaustedMemory&) = delete;
    ~ExhaustedMemory();
};

} // namespace corvina::test
