#include "support/Recording.h"

#include "support/MessagePump.h"

#include <algorithm>
#include <cstdlib>

namespace corvina::test {

namespace {

constexpr Frame silence{};

bool sounds(const Frame& frame) {
    return frame != silence;
}

} // namespace

Recording::Recording() {
    const wchar_t* const path = ::_wgetenv(L"CORVINA_HEARD");
    if (!path)
        return;
    // The test environment speaks of it as Unix does, whose root is drive Z.
    path_ = (path[0] == L'/' ? L"Z:" : L"") + std::wstring(path);
}

std::size_t Recording::now() const {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!::GetFileAttributesExW(path_.c_str(), GetFileExInfoStandard, &data))
        return 0;
    return data.nFileSizeLow / sizeof(Frame);
}

Frames Recording::since(std::size_t position) const {
    const HANDLE file =
        ::CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return {};
    const std::size_t end = ::GetFileSize(file, nullptr) / sizeof(Frame);
    Frames frames(end > position ? end - position : 0);
    DWORD read = 0;
    ::SetFilePointer(file, static_cast<LONG>(position * sizeof(Frame)), nullptr, FILE_BEGIN);
    ::ReadFile(file, frames.data(), static_cast<DWORD>(frames.size() * sizeof(Frame)), &read,
               nullptr);
    ::CloseHandle(file);
    frames.resize(read / sizeof(Frame));
    return frames;
}

std::optional<std::size_t> Recording::soundSince(std::size_t position) const {
    const Frames heard = since(position);
    const auto first = std::find_if(heard.begin(), heard.end(), sounds);
    if (first == heard.end())
        return std::nullopt;
    return position + static_cast<std::size_t>(first - heard.begin());
}

Frames Recording::listen(std::size_t position, std::size_t frames,
                         std::chrono::milliseconds deadline) const {
    std::optional<std::size_t> beginning;
    Frames heard;
    (void)pumpUntil(
        [&] {
            if (!beginning)
                beginning = soundSince(position);
            if (!beginning || now() < *beginning + frames)
                return false;
            heard = since(*beginning);
            return static_cast<std::size_t>(std::count_if(heard.begin(), heard.end(), sounds)) >=
                   frames;
        },
        deadline);
    return beginning ? since(*beginning) : Frames();
}

Frames Recording::listenUntilQuiet(std::size_t position, std::chrono::milliseconds deadline) const {
    constexpr std::size_t quietFrames = 11025;
    Frames heard = listen(position, 1, deadline);
    (void)pumpUntil(
        [&] {
            const std::size_t end = now();
            return end > position + quietFrames && !soundSince(end - quietFrames);
        },
        deadline);
    return heard.empty() ? heard : since(soundSince(position).value_or(position));
}

Frames withoutSilenceBehind(Frames frames) {
    const auto last = std::find_if(frames.rbegin(), frames.rend(), sounds);
    frames.erase(last.base(), frames.end());
    return frames;
}

} // namespace corvina::test
