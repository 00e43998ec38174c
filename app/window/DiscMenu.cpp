#include "window/DiscMenu.h"

#include "window/Commands.h"

namespace corvina::app {

namespace {

// Each drive has a hundred commands: one for all tracks, then one for each track, at most 99.
constexpr int commandsOfDrive = 100;

int commandOf(std::size_t drive, std::size_t entry) {
    return CMD_DISCS + static_cast<int>(drive) * commandsOfDrive + static_cast<int>(entry);
}

void addLine(HMENU menu, int command, const std::wstring& text) {
    AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(command), text.c_str());
}

void addRemark(HMENU menu, const std::wstring& text) {
    AppendMenuW(menu, MF_STRING | MF_GRAYED, 0, text.c_str());
}

// Track01.cda of drive D: is "Track01".
std::wstring trackName(const std::wstring& path) {
    const std::size_t name = path.find_last_of(L'\\') + 1;
    return path.substr(name, path.find_last_of(L'.') - name);
}

} // namespace

void DiscMenu::fill() {
    while (DeleteMenu(menu_, 0, MF_BYPOSITION)) {
    }
    drives_ = listDiscDrives();
    for (std::size_t index = 0; index < drives_.size(); ++index)
        addDrive(index);
    if (drives_.empty())
        addRemark(menu_, L"No CD drive");
}

void DiscMenu::addDrive(std::size_t index) {
    DiscDrive& drive = drives_[index];
    if (drive.tracks.empty()) {
        addRemark(menu_, drive.name + L" no audio disc");
        return;
    }
    if (drive.tracks.size() >= commandsOfDrive)
        drive.tracks.resize(commandsOfDrive - 1);
    const HMENU tracks = CreatePopupMenu();
    addLine(tracks, commandOf(index, 0), L"&Whole disc");
    AppendMenuW(tracks, MF_SEPARATOR, 0, nullptr);
    for (std::size_t track = 0; track < drive.tracks.size(); ++track)
        addLine(tracks, commandOf(index, track + 1), trackName(drive.tracks[track]));
    AppendMenuW(menu_, MF_POPUP, reinterpret_cast<UINT_PTR>(tracks), drive.name.c_str());
}

std::vector<std::wstring> DiscMenu::tracksOf(int command) const {
    if (command < CMD_DISCS)
        return {};
    const auto drive = static_cast<std::size_t>((command - CMD_DISCS) / commandsOfDrive);
    const auto entry = static_cast<std::size_t>((command - CMD_DISCS) % commandsOfDrive);
    if (drive >= drives_.size() || entry > drives_[drive].tracks.size())
        return {};
    if (entry == 0)
        return drives_[drive].tracks;
    return {drives_[drive].tracks[entry - 1]};
}

} // namespace corvina::app
