#include "BareRing.h"

#include "support/MessagePump.h"

#include "Figure.h"
#include "support/MessagePump.h"
#include "support/WavBytes.h"

namespace corvina::bench {
namespace {

constexpr LONG headerBytes = 44;

} // namespace

BareRing::BareRing() {
    ::SetWindowLongPtrA(window_.handle(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ::SetWindowLongPtrA(window_.handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&windowProc));
}

BareRing::~BareRing() {
    stop();
}

void BareRing::start(const std::wstring& path) {
    file_ = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                          nullptr);
    if (file_ == INVALID_HANDLE_VALUE)
        giveUp("the bare ring cannot open its file");
    ::SetFilePointer(file_, headerBytes, nullptr, FILE_BEGIN);
    const WAVEFORMATEX format = test::pcm(44100, 2, 16);
    if (::waveOutOpen(&device_, WAVE_MAPPER, &format, reinterpret_cast<DWORD_PTR>(window_.handle()),
                      0, CALLBACK_WINDOW) != 0)
        giveUp("the bare ring cannot open the wave mapper");
    firstWrite_ = {};
    for (Slot& slot : slots_) {
        slot.header = {};
        slot.header.lpData = slot.data.data();
        slot.header.dwBufferLength = static_cast<DWORD>(slot.data.size());
        ::waveOutPrepareHeader(device_, &slot.header, sizeof slot.header);
        refill(slot.header);
    }
}

void BareRing::refill(WAVEHDR& header) {
    DWORD got = 0;
    ::ReadFile(file_, header.lpData, header.dwBufferLength, &got, nullptr);
    if (got == 0)
        return;
    if (firstWrite_ == Moment{})
        firstWrite_ = std::chrono::steady_clock::now();
    if (::waveOutWrite(device_, &header, sizeof header) == 0)
        ++queued_;
}

void BareRing::stop() {
    if (!device_)
        return;
    ::waveOutReset(device_);
    for (Slot& slot : slots_)
        ::waveOutUnprepareHeader(device_, &slot.header, sizeof slot.header);
    ::waveOutClose(device_);
    device_ = nullptr;
    ::CloseHandle(file_);
    test::dispatchWaitingMessages();
    queued_ = 0;
}

LRESULT CALLBACK BareRing::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != MM_WOM_DONE)
        return ::DefWindowProcA(window, message, wParam, lParam);
    auto* const ring = reinterpret_cast<BareRing*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
    if (ring->device_) {
        --ring->queued_;
        ring->refill(*reinterpret_cast<WAVEHDR*>(lParam));
    }
    return 0;
}

} // namespace corvina::bench
