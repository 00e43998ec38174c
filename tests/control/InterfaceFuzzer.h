#pragma once

// Random calls of everything that a control offers, with hostile arguments: null pointers, foreign
// interfaces, numbers at every limit, dead addresses, random data. A seed gives the same calls
// again.

#include "PersistenceDoubles.h"
#include "Picture.h"
#include "ReenteringContainer.h"
#include "Support.h"

#include <random>

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

// One control, and a container that it may or may not be in.
class InterfaceFuzzer {
public:
    InterfaceFuzzer(REFCLSID clsid, std::uint32_t seed);
    ~InterfaceFuzzer();
    InterfaceFuzzer(const InterfaceFuzzer&) = delete;
    InterfaceFuzzer& operator=(const InterfaceFuzzer&) = delete;

    void call();

    // What is called now, for the report of a crash.
    static inline int latest = -1;

private:
    template <typename Interface>
    ComPtr<Interface> as() {
        return control_.query<Interface>();
    }

    void callObject();
    void callInPlace();
    void callControl();
    void callView();
    void callData();
    void callPersist();
    void callConnections();
    void callDispatch();
    void callQuickActivate();
    void callPlayer(_cPlayer& player);
    void callNewerMember(_cPlayer& player);
    void callNewerMember(_cAudioGraph& graph);
    void callGraph(_cAudioGraph& graph);
    void callMembers();
    void sendMessage();

    Random random_;
    HiddenWindow window_;
    ComPtr<ReenteringSite> site_;
    Picture picture_{{64, 64}};
    ComPtr<IDispatch> control_;
    HWND own_ = nullptr;
};

} // namespace corvina::test
