#include "MinimalWavPlayer.h"

#include "Figure.h"
#include "support/MessagePump.h"
#include "support/WavBytes.h"

namespace corvina::bench {
namespace {

constexpr LONG headerBytes = 44;

} // namespace

MinimalWavPlayer::MinimalWavPlayer() {
    ::SetWindowLongPtrA(window_.handle(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ::SetWindowLongPtrA(window_.handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&windowProc));
}

MinimalWavPlayer::~MinimalWavPlayer() {
    stop();
}

void MinimalWavPlayer::start(const std::wstring& path, Codec codec) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        giveUp("the minimal player cannot open its file");
    file_.reset(file);
    ::SetFilePointer(file, headerBytes, nullptr, FILE_BEGIN);
    WAVEFORMATEX format = test::pcm(44100, 2, 16);
    if (codec == Codec::opened) {
        WAVEFORMATEX output = format;
        HACMSTREAM stream = nullptr;
        if (::acmStreamOpen(&stream, nullptr, &format, &output, nullptr, 0, 0, 0) != 0)
            giveUp("the minimal player finds no codec for PCM");
        codec_.reset(stream);
    }
    if (::waveOutOpen(&device_, WAVE_MAPPER, &format, reinterpret_cast<DWORD_PTR>(window_.handle()),
                      0, CALLBACK_WINDOW) != 0)
        giveUp("the minimal player cannot open the wave mapper");
    firstWrite_ = {};
    for (Slot& slot : slots_) {
        slot.header = {};
        slot.header.lpData = slot.data.data();
        slot.header.dwBufferLength = static_cast<DWORD>(slot.data.size());
        ::waveOutPrepareHeader(device_, &slot.header, sizeof slot.header);
        refill(slot.header);
    }
}

void MinimalWavPlayer::refill(WAVEHDR& header) {
    DWORD got = 0;
    ::ReadFile(file_.get(), header.lpData, header.dwBufferLength, &got, nullptr);
    if (got == 0)
        return;
    if (firstWrite_ == Moment{})
        firstWrite_ = std::chrono::steady_clock::now();
    if (::waveOutWrite(device_, &header, sizeof header) == 0)
        ++queued_;
}

void MinimalWavPlayer::jump(LONG byte) {
    firstWrite_ = {};
    ::SetFilePointer(file_.get(), headerBytes + byte, nullptr, FILE_BEGIN);
    ::waveOutReset(device_);
    // The messages of the dropped buffers fill them anew.
    if (!test::pumpUntil([this] { return firstWrite_ != Moment{}; }))
        giveUp("the minimal player does not go on");
}

void MinimalWavPlayer::stop() {
    if (!device_)
        return;
    ::waveOutReset(device_);
    for (Slot& slot : slots_)
        ::waveOutUnprepareHeader(device_, &slot.header, sizeof slot.header);
    ::waveOutClose(device_);
    device_ = nullptr;
    file_.reset();
    codec_.reset();
    test::dispatchWaitingMessages();
    queued_ = 0;
}

LRESULT CALLBACK MinimalWavPlayer::windowProc(HWND window, UINT message, WPARAM wParam,
                                              LPARAM lParam) {
    if (message != MM_WOM_DONE)
        return ::DefWindowProcA(window, message, wParam, lParam);
    auto* const player =
        reinterpret_cast<MinimalWavPlayer*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
    if (player->device_) {
        --player->queued_;
        player->refill(*reinterpret_cast<WAVEHDR*>(lParam));
    }
    return 0;
}

} // namespace corvina::bench
