#pragma once

// Random calls of everything that a control offers, with hostile arguments: null pointers, foreign
// interfaces, numbers at every limit, dead addresses, random data. A seed gives the same calls
// again.

#include "PersistenceDoubles.h"
#include "Picture.h"
#include "RandomArguments.h"
#include "ReenteringContainer.h"
#include "Support.h"

namespace corvina::test {

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
