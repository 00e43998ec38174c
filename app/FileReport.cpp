#include "FileReport.h"

#include <cmath>

namespace corvina::app {

namespace {

std::wstring channelWords(short channels) {
    switch (channels) {
    case 1:
        return L"mono";
    case 2:
        return L"stereo";
    default:
        return std::to_wstring(channels) + L" channels";
    }
}

constexpr std::size_t nameColumn = 9;

} // namespace

std::wstring formatLine(PlayerClient& player, long milliseconds) {
    const FileFormat format = player.format();
    // Of some formats the bit rate is unknown.
    const std::wstring rate =
        format.bitrate > 0 ? std::to_wstring(std::lround(format.bitrate / 1000.0)) + L" kbit/s, "
                           : L"";
    // The name says the width of the samples, where they have one.
    const std::wstring name = player.formatName();
    return (name.empty() ? std::to_wstring(format.bitsPerSample) + L" bits" : name) + L", " +
           std::to_wstring(format.sampleRate) + L" Hz, " + channelWords(format.channels) + L", " +
           rate + player.timeText(std::lround(milliseconds / 1000.0));
}

std::vector<std::wstring> reportFile(PlayerClient& player, const std::wstring& file,
                                     long milliseconds) {
    // The name alone: npos + 1 is 0, a name without a folder.
    std::vector<std::wstring> lines{file.substr(file.find_last_of(L"\\/") + 1),
                                    L"  " + formatLine(player, milliseconds)};
    for (const FileTag& tag : player.tags(file)) {
        std::wstring name = tag.name;
        name.resize(nameColumn, L' ');
        lines.push_back(L"  " + name + tag.value);
    }
    return lines;
}

} // namespace corvina::app
