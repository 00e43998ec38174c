#pragma once

// Random arguments for calls of a control: numbers at the edge of something, odd texts, values of
// every type. A seed gives the same ones again.

#include "com/Variant.h"

#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <windows.h>

namespace corvina::test {

class Random {
public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}

    std::uint32_t below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(engine_()) % limit;
    }
    bool oneIn(std::uint32_t chances) { return below(chances) == 0; }
    // Mostly numbers at the edge of something.
    LONG number() {
        constexpr LONG edges[] = {0,
                                  1,
                                  -1,
                                  2,
                                  50,
                                  100,
                                  512,
                                  1023,
                                  1024,
                                  32767,
                                  32768,
                                  65535,
                                  65536,
                                  -101,
                                  -3,
                                  255,
                                  -2147483647 - 1,
                                  2147483647,
                                  0x7FFFFF00,
                                  44100};
        return oneIn(3) ? static_cast<LONG>(engine_()) : edges[below(std::size(edges))];
    }
    RECT rect() {
        return oneIn(2) ? RECT{0, 0, static_cast<LONG>(below(300)), static_cast<LONG>(below(300))}
                        : RECT{number(), number(), number(), number()};
    }
    std::wstring text() {
        constexpr const wchar_t* texts[] = {L"",       L"x.wav", L"no such.mp3",  L"..\\..\\",
                                            L"a.b.c.", L"*.ogg", L"\\\\?\\x.ape", L"track01.cda"};
        std::wstring result = texts[below(std::size(texts))];
        if (oneIn(4))
            result.append(below(2000), static_cast<wchar_t>(1 + below(0xFFFF)));
        return result;
    }
    // A VARIANT that may say anything but lie about its memory.
    Variant variant() {
        switch (below(4)) {
        case 0:
            return Variant(number());
        case 1:
            return Variant(text());
        case 2: {
            Variant real;
            V_VT(&real) = VT_R8;
            V_R8(&real) = oneIn(2) ? 1e300 : static_cast<double>(number()) / 3;
            return real;
        }
        default:
            return Variant();
        }
    }

private:
    std::mt19937 engine_;
};

} // namespace corvina::test
