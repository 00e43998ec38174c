// What the player window does for its menus, keys and buttons.

#include "FileLists.h"
#include "window/Commands.h"
#include "window/FileChoice.h"
#include "window/PlayerWindow.h"

#include <utility>

namespace corvina::app {

namespace {

constexpr long seekSeconds = 5;

} // namespace

void PlayerWindow::onCommand(int command, int notification) {
    switch (command) {
    case CMD_OPEN:
        openPaths(chooseFiles(window_), true);
        break;
    case CMD_ADD:
        openPaths(chooseFiles(window_), false);
        break;
    case CMD_OPEN_FOLDER:
        if (const std::wstring folder = chooseFolder(window_); !folder.empty())
            openPaths({folder}, true);
        break;
    case CMD_MOVE_UP:
    case CMD_MOVE_DOWN:
        moveSelected(command == CMD_MOVE_UP ? -1 : 1);
        break;
    case CMD_SHUFFLE:
        settings_.shuffle = !settings_.shuffle;
        showModes();
        break;
    case CMD_REPEAT:
        settings_.repeat = !settings_.repeat;
        showModes();
        break;
    case CMD_REMOVE:
        if (const int selected = controls_->selectedFile(); selected >= 0)
            queue_.remove(static_cast<std::size_t>(selected));
        view_->showFiles();
        break;
    case CMD_CLEAR:
        queue_.clear();
        view_->showFiles();
        break;
    case CMD_EXIT:
        close();
        break;
    case CMD_PLAY_SELECTED:
        playSelected();
        break;
    case CMD_PAUSE:
        playOrPause();
        break;
    case CMD_STOP:
        queue_.stop();
        break;
    case CMD_NEXT:
        queue_.next();
        break;
    case CMD_PREVIOUS:
        queue_.previous();
        break;
    case CMD_BACK:
        queue_.seekBy(-seekSeconds);
        break;
    case CMD_FORWARD:
        queue_.seekBy(seekSeconds);
        break;
    case CMD_SPECTRUM:
        setGraphStyle(FREQUENCY_STYLE);
        break;
    case CMD_WAVEFORM:
        setGraphStyle(AMPLITUDE_STYLE);
        break;
    case CMD_BAR_COLOR:
        changeColor(&Settings::barColor);
        break;
    case CMD_CURVE_COLOR:
        changeColor(&Settings::curveColor);
        break;
    case CMD_BACKGROUND_COLOR:
        changeColor(&Settings::backgroundColor);
        break;
    case CMD_ABOUT:
        queue_.player().showAbout();
        break;
    case CTL_LIST:
        if (notification == LBN_DBLCLK)
            playSelected();
        break;
    case CTL_DEVICE:
        if (notification == CBN_SELCHANGE)
            devices_->takeSelected();
        break;
    default:
        if (const std::wstring file = recent_.fileOf(command); !file.empty())
            openPaths({file}, true);
        else
            addFiles(discs_.tracksOf(command), true);
        break;
    }
}

void PlayerWindow::addFiles(std::vector<std::wstring> files, bool replace) {
    if (files.empty())
        return;
    if (replace)
        queue_.clear();
    const std::size_t first = queue_.files().size();
    for (std::wstring& file : files)
        queue_.add(std::move(file));
    if (!queue_.isPlaying())
        queue_.play(first);
    view_->showFiles();
}

void PlayerWindow::openPaths(const std::vector<std::wstring>& paths, bool replace) {
    for (const std::wstring& path : paths)
        settings_.addRecent(path);
    std::vector<std::wstring> files = expandPaths(paths);
    if (!paths.empty() && files.empty())
        controls_->setMessage(L"There is no audio file in it.");
    addFiles(std::move(files), replace);
}

void PlayerWindow::moveFile(std::size_t from, std::size_t to) {
    queue_.move(from, to);
    view_->showFiles();
    controls_->selectFile(to);
}

void PlayerWindow::moveSelected(int lines) {
    const int from = controls_->selectedFile();
    const int to = from + lines;
    if (from >= 0 && to >= 0 && to < static_cast<int>(queue_.files().size()))
        moveFile(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
}

LRESULT PlayerWindow::onDrag(LPARAM information) {
    std::optional<PlayerControls::Drop> drop;
    const LRESULT result = controls_->dragMessage(information, drop);
    if (drop)
        moveFile(drop->from, drop->to);
    return result;
}

void PlayerWindow::showModes() {
    queue_.setShuffled(settings_.shuffle);
    queue_.setRepeated(settings_.repeat);
    const auto check = [this](UINT command, bool on) {
        CheckMenuItem(GetMenu(window_), command, on ? MF_CHECKED : MF_UNCHECKED);
    };
    check(CMD_SHUFFLE, settings_.shuffle);
    check(CMD_REPEAT, settings_.repeat);
}

void PlayerWindow::playSelected() {
    if (const int selected = controls_->selectedFile(); selected >= 0)
        queue_.play(static_cast<std::size_t>(selected));
}

void PlayerWindow::playOrPause() {
    if (queue_.isPlaying())
        queue_.togglePause();
    else if (!queue_.files().empty())
        queue_.play(queue_.current() < queue_.files().size() ? queue_.current() : 0);
}

void PlayerWindow::setGraphStyle(AudioGraphStyle style) {
    settings_.graphStyle = style;
    graph_->setStyle(style);
    CheckMenuRadioItem(GetMenu(window_), CMD_SPECTRUM, CMD_WAVEFORM,
                       style == FREQUENCY_STYLE ? CMD_SPECTRUM : CMD_WAVEFORM, MF_BYCOMMAND);
}

void PlayerWindow::changeColor(DWORD Settings::*color) {
    if (const std::optional<COLORREF> chosen = chooseColor(window_, settings_.*color)) {
        settings_.*color = *chosen;
        applyColors();
    }
}

void PlayerWindow::applyColors() {
    graph_->setColors(settings_.barColor, settings_.curveColor, settings_.backgroundColor);
}

} // namespace corvina::app
