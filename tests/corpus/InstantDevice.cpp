#include "InstantDevice.h"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace corvina::test {
namespace {

// Not the handle of anything.
HWAVEOUT handle() {
    return reinterpret_cast<HWAVEOUT>(std::uintptr_t{0xD0D0});
}

void writeCode(std::uint8_t* code, const std::uint8_t* bytes, std::size_t count) {
    DWORD before = 0;
    if (!::VirtualProtect(code, count, PAGE_EXECUTE_READWRITE, &before))
        throw std::runtime_error("winmm.dll cannot be changed");
    std::memcpy(code, bytes, count);
    ::VirtualProtect(code, count, before, &before);
    ::FlushInstructionCache(::GetCurrentProcess(), code, count);
}

} // namespace

InstantDevice* InstantDevice::current_ = nullptr;

InstantDevice::InstantDevice() {
    current_ = this;
    redirect("waveOutOpen", reinterpret_cast<const void*>(&open));
    redirect("waveOutPrepareHeader", reinterpret_cast<const void*>(&prepare));
    redirect("waveOutUnprepareHeader", reinterpret_cast<const void*>(&unprepare));
    redirect("waveOutWrite", reinterpret_cast<const void*>(&write));
    redirect("waveOutReset", reinterpret_cast<const void*>(&reset));
    redirect("waveOutPause", reinterpret_cast<const void*>(&control));
    redirect("waveOutRestart", reinterpret_cast<const void*>(&control));
    redirect("waveOutGetPosition", reinterpret_cast<const void*>(&position));
    redirect("waveOutClose", reinterpret_cast<const void*>(&close));
}

InstantDevice::~InstantDevice() {
    for (const Detour& detour : detours_)
        writeCode(detour.code, detour.original.data(), detour.original.size());
    current_ = nullptr;
}

void InstantDevice::redirect(const char* name, const void* target) {
    Detour detour;
    detour.code = reinterpret_cast<std::uint8_t*>(
        reinterpret_cast<void*>(::GetProcAddress(::LoadLibraryA("winmm.dll"), name)));
    if (!detour.code)
        throw std::runtime_error("winmm.dll lacks a function");
    std::memcpy(detour.original.data(), detour.code, detour.original.size());
    std::array<std::uint8_t, 5> jump{0xE9};
    const auto distance = static_cast<const std::uint8_t*>(target) - (detour.code + jump.size());
    std::memcpy(&jump[1], &distance, sizeof distance);
    writeCode(detour.code, jump.data(), jump.size());
    detours_.push_back(detour);
}

MMRESULT InstantDevice::open(HWAVEOUT* device, UINT, const WAVEFORMATEX* format, DWORD_PTR callback,
                             DWORD_PTR, DWORD flags) {
    if (flags & WAVE_FORMAT_QUERY)
        return MMSYSERR_NOERROR;
    current_->format_ = *format;
    current_->window_ = reinterpret_cast<HWND>(callback);
    current_->isOpen_ = true;
    current_->bytesSinceReset_ = 0;
    *device = handle();
    ::PostMessageA(current_->window_, MM_WOM_OPEN, reinterpret_cast<WPARAM>(*device), 0);
    return MMSYSERR_NOERROR;
}

MMRESULT InstantDevice::prepare(HWAVEOUT, WAVEHDR* header, UINT) {
    header->dwFlags |= WHDR_PREPARED;
    return MMSYSERR_NOERROR;
}

MMRESULT InstantDevice::unprepare(HWAVEOUT, WAVEHDR* header, UINT) {
    header->dwFlags &= ~static_cast<DWORD>(WHDR_PREPARED);
    return MMSYSERR_NOERROR;
}

MMRESULT InstantDevice::write(HWAVEOUT, WAVEHDR* header, UINT) {
    const auto* const data = reinterpret_cast<const std::uint8_t*>(header->lpData);
    current_->bytes_.insert(current_->bytes_.end(), data, data + header->dwBufferLength);
    current_->bytesSinceReset_ += header->dwBufferLength;
    if (!current_->holds_) {
        current_->giveBack(header);
        return MMSYSERR_NOERROR;
    }
    header->dwFlags |= WHDR_INQUEUE;
    current_->held_.push_back(header);
    return MMSYSERR_NOERROR;
}

void InstantDevice::giveBack(WAVEHDR* header) const {
    header->dwFlags &= ~static_cast<DWORD>(WHDR_INQUEUE);
    header->dwFlags |= WHDR_DONE;
    ::PostMessageA(window_, MM_WOM_DONE, reinterpret_cast<WPARAM>(handle()),
                   reinterpret_cast<LPARAM>(header));
}

void InstantDevice::release() {
    holds_ = false;
    for (WAVEHDR* const header : std::exchange(held_, {}))
        giveBack(header);
}

MMRESULT InstantDevice::reset(HWAVEOUT) {
    if (!current_->isOpen_)
        return MMSYSERR_INVALHANDLE;
    for (WAVEHDR* const header : std::exchange(current_->held_, {}))
        current_->giveBack(header);
    current_->bytesSinceReset_ = 0;
    return MMSYSERR_NOERROR;
}

MMRESULT InstantDevice::position(HWAVEOUT, MMTIME* time, UINT) {
    if (!current_->isOpen_)
        return MMSYSERR_INVALHANDLE;
    time->wType = TIME_BYTES;
    time->u.cb = static_cast<DWORD>(current_->bytesSinceReset_);
    return MMSYSERR_NOERROR;
}

MMRESULT InstantDevice::control(HWAVEOUT) {
    return current_->isOpen_ ? MMSYSERR_NOERROR : MMSYSERR_INVALHANDLE;
}

MMRESULT InstantDevice::close(HWAVEOUT device) {
    if (!current_->isOpen_)
        return MMSYSERR_INVALHANDLE;
    current_->isOpen_ = false;
    ::PostMessageA(current_->window_, MM_WOM_CLOSE, reinterpret_cast<WPARAM>(device), 0);
    return MMSYSERR_NOERROR;
}

std::vector<std::int16_t> InstantDevice::samples() const {
    const std::size_t width = format_.wBitsPerSample / 8u;
    std::vector<std::int16_t> result(width == 0 ? 0 : bytes_.size() / width);
    for (std::size_t index = 0; index < result.size(); ++index) {
        const std::uint8_t* const sample = &bytes_[index * width];
        if (width == 1)
            result[index] = static_cast<std::int16_t>((sample[0] - 128) * 256);
        else // the upper two bytes
            std::memcpy(&result[index], sample + width - 2, 2);
    }
    return result;
}

} // namespace corvina::test
