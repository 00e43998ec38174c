// What the player window does for its menus, keys and buttons.

#include "FileLists.h"
#include "window/Commands.h"
#include "window/FileChoice.h"
#include "window/PlayerWindow.h"

#include <utility>

#include <commctrl.h>

namespace corvina::app {

namespace {

constexpr long seekMs = 5000;

} // namespace

void PlayerWindow::onCommand(int command, int notification) {
    if (command >= CTL_LIST && command < CTL_BANDS)
        return onNotification(command, notification);
    if (carryOut(command) || carryOutForList(command) || graphChoices_->carryOut(command))
        return;
    if (sound_->carryOut(command)) {
        if (command == CMD_EQUALIZER)
            enlarge();
    } else if (const std::wstring file = recent_.fileOf(command); !file.empty()) {
        openPaths({file}, true);
    } else {
        std::vector<Track> tracks;
        for (std::wstring& track : discs_.tracksOf(command))
            tracks.emplace_back(std::move(track));
        addTracks(std::move(tracks), true);
    }
}

bool PlayerWindow::carryOut(int command) {
    switch (command) {
    case CMD_PLAY_SELECTED:
        playSelected();
        return true;
    case CMD_PAUSE:
        playOrPause();
        return true;
    case CMD_STOP:
        queue_.stop();
        return true;
    case CMD_NEXT:
        queue_.next();
        return true;
    case CMD_PREVIOUS:
        queue_.previous();
        return true;
    case CMD_BACK:
        queue_.seekBy(-seekMs);
        return true;
    case CMD_FORWARD:
        queue_.seekBy(seekMs);
        return true;
    case CMD_SHUFFLE:
        toggle(&Settings::shuffle);
        return true;
    case CMD_REPEAT:
        toggle(&Settings::repeat);
        return true;
    case CMD_LOOP:
        toggle(&Settings::loop);
        return true;
    case CMD_ABOUT:
        queue_.player().showAbout();
        return true;
    case CMD_EXIT:
        close();
        return true;
    default:
        return false;
    }
}

bool PlayerWindow::carryOutForList(int command) {
    switch (command) {
    case CMD_OPEN:
        openPaths(chooseFiles(window_, audioPatterns_), true);
        return true;
    case CMD_ADD:
        openPaths(chooseFiles(window_, audioPatterns_), false);
        return true;
    case CMD_OPEN_FOLDER:
        if (const std::wstring folder = chooseFolder(window_); !folder.empty())
            openPaths({folder}, true);
        return true;
    case CMD_MOVE_UP:
    case CMD_MOVE_DOWN:
        moveSelected(command == CMD_MOVE_UP ? -1 : 1);
        return true;
    case CMD_REMOVE:
        if (const int selected = controls_->list().selected(); selected >= 0)
            queue_.remove(static_cast<std::size_t>(selected));
        view_->showTracks();
        return true;
    case CMD_CLEAR:
        queue_.clear();
        view_->showTracks();
        return true;
    default:
        return false;
    }
}

void PlayerWindow::onNotification(int control, int notification) {
    if (control == CTL_LIST && notification == LBN_DBLCLK)
        playSelected();
    else if (control == CTL_DEVICE && notification == CBN_DROPDOWN)
        devices_->list();
    else if (control == CTL_DEVICE && notification == CBN_SELCHANGE)
        devices_->takeSelected();
    else if (control == CTL_PRESET && notification == CBN_SELCHANGE)
        sound_->takePreset();
}

// TB_ENDTRACK follows every other request and says nothing new.
void PlayerWindow::onSlider(HWND slider, int request) {
    if (!controls_->seekBar().is(slider))
        sound_->onSlider(slider);
    else if (request == TB_THUMBTRACK)
        controls_->seekBar().showDragged();
    else if (request != TB_ENDTRACK)
        queue_.seekTo(controls_->seekBar().position());
}

bool PlayerWindow::onMediaKey(int key) {
    switch (key) {
    case APPCOMMAND_MEDIA_PLAY_PAUSE:
        return carryOut(CMD_PAUSE);
    case APPCOMMAND_MEDIA_PLAY:
        return queue_.player().state() == PLAY_PLAYING || carryOut(CMD_PAUSE);
    case APPCOMMAND_MEDIA_PAUSE:
        return queue_.player().state() != PLAY_PLAYING || carryOut(CMD_PAUSE);
    case APPCOMMAND_MEDIA_STOP:
        return carryOut(CMD_STOP);
    case APPCOMMAND_MEDIA_NEXTTRACK:
        return carryOut(CMD_NEXT);
    case APPCOMMAND_MEDIA_PREVIOUSTRACK:
        return carryOut(CMD_PREVIOUS);
    default:
        return false;
    }
}

void PlayerWindow::addTracks(std::vector<Track> tracks, bool replace) {
    if (tracks.empty())
        return;
    if (replace)
        queue_.clear();
    const std::size_t first = queue_.tracks().size();
    for (Track& track : tracks)
        queue_.add(std::move(track));
    if (!queue_.isPlaying())
        queue_.play(first);
    view_->showTracks();
}

void PlayerWindow::openPaths(const std::vector<std::wstring>& paths, bool replace) {
    for (const std::wstring& path : paths)
        settings_.addRecent(path);
    std::vector<Track> tracks = expandPaths(paths, audioPatterns_);
    if (!paths.empty() && tracks.empty())
        controls_->setMessage(L"There is no audio file in it.");
    addTracks(std::move(tracks), replace);
}

void PlayerWindow::moveTrack(std::size_t from, std::size_t to) {
    queue_.move(from, to);
    view_->showTracks();
    controls_->list().select(to);
}

void PlayerWindow::moveSelected(int lines) {
    const int from = controls_->list().selected();
    const int to = from + lines;
    if (from >= 0 && to >= 0 && to < static_cast<int>(queue_.tracks().size()))
        moveTrack(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
}

LRESULT PlayerWindow::onDrag(LPARAM information) {
    std::optional<TrackListBox::Drop> drop;
    const LRESULT result = controls_->list().dragMessage(information, drop);
    if (drop)
        moveTrack(drop->from, drop->to);
    return result;
}

void PlayerWindow::toggle(bool Settings::*mode) {
    settings_.*mode = !(settings_.*mode);
    showModes();
}

void PlayerWindow::showModes() {
    queue_.setShuffled(settings_.shuffle);
    queue_.setRepeated(settings_.repeat);
    queue_.setLooping(settings_.loop);
    const auto check = [this](UINT command, bool on) {
        CheckMenuItem(GetMenu(window_), command, on ? MF_CHECKED : MF_UNCHECKED);
    };
    check(CMD_SHUFFLE, settings_.shuffle);
    check(CMD_REPEAT, settings_.repeat);
    check(CMD_LOOP, settings_.loop);
}

void PlayerWindow::playSelected() {
    if (const int selected = controls_->list().selected(); selected >= 0)
        queue_.play(static_cast<std::size_t>(selected));
}

void PlayerWindow::playOrPause() {
    if (queue_.isPlaying())
        queue_.togglePause();
    else if (!queue_.tracks().empty())
        queue_.play(queue_.current() < queue_.tracks().size() ? queue_.current() : 0);
}

} // namespace corvina::app
