#pragma once

// Uses a source over stand-in libraries from its creation to its end.

#include "runtime/RuntimeError.h"
#include "support/StandIns.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace corvina::test {

// The numbers of the run-time errors that its functions raised.
template <typename Source>
[[nodiscard]] std::vector<std::int32_t> raisedErrors(const std::wstring& path) {
    std::vector<std::int32_t> errors;
    const auto attempt = [&errors](auto&& use) {
        try {
            use();
        } catch (const RuntimeError& error) {
            errors.push_back(error.number());
        }
    };
    Source source(StandIns::api());
    for (int round = 0; round < 2; ++round) {
        std::array<char, 400> buffer{};
        std::int32_t got = 0;
        std::int32_t mode = 0;
        std::int32_t opened = -1;
        attempt([&] { opened = source.OpenSource(path); });
        attempt([&] { (void)source.Read(buffer.data(), 400, got); });
        attempt([&] { (void)source.SeekTo(50, mode); });
        attempt([&] { (void)source.EndOfStream(); });
        if (opened == 0)
            attempt([&] { (void)source.Position(); });
        attempt([&] { (void)source.CloseSource(); });
    }
    return errors;
}

} // namespace corvina::test
