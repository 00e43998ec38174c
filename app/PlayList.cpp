#include "PlayList.h"

#include <algorithm>
#include <utility>

namespace corvina::app {

namespace {

constexpr std::size_t longestHistory = 1000;

template <typename Item>
void moveItem(std::vector<Item>& items, std::size_t from, std::size_t to) {
    const auto at = [&items](std::size_t index) {
        return items.begin() + static_cast<std::ptrdiff_t>(index);
    };
    if (from < to)
        std::rotate(at(from), at(from + 1), at(to + 1));
    else
        std::rotate(at(to), at(from), at(from + 1));
}

} // namespace

void PlayList::add(Track track) {
    tracks_.push_back(std::move(track));
    states_.push_back({.id = nextId_++, .failure = {}});
}

void PlayList::remove(std::size_t index) {
    if (index >= size())
        return;
    tracks_.erase(tracks_.begin() + static_cast<std::ptrdiff_t>(index));
    states_.erase(states_.begin() + static_cast<std::ptrdiff_t>(index));
}

void PlayList::clear() noexcept {
    tracks_.clear();
    states_.clear();
    history_.clear();
}

void PlayList::move(std::size_t from, std::size_t to) {
    if (from >= size() || to >= size())
        return;
    moveItem(tracks_, from, to);
    moveItem(states_, from, to);
}

std::size_t PlayList::movedIndex(std::size_t index, std::size_t from, std::size_t to) noexcept {
    if (index == from)
        return to;
    if (from < index && index <= to)
        return index - 1;
    if (to <= index && index < from)
        return index + 1;
    return index;
}

void PlayList::setFailure(std::size_t index, const std::wstring& words) {
    if (index < size())
        states_[index].failure = words;
}

void PlayList::setShuffled(bool on) {
    shuffled_ = on;
    for (State& state : states_)
        state.played = !history_.empty() && state.id == history_.back();
}

void PlayList::markPlayed(std::size_t index) {
    if (index >= size())
        return;
    states_[index].played = true;
    if (history_.empty() || history_.back() != states_[index].id)
        history_.push_back(states_[index].id);
    if (history_.size() > longestHistory)
        history_.erase(history_.begin());
}

std::optional<std::size_t> PlayList::after(std::size_t index) {
    if (size() == 0)
        return std::nullopt;
    if (!shuffled_) {
        if (index + 1 < size())
            return index + 1;
        return repeated_ ? std::optional<std::size_t>(0) : std::nullopt;
    }
    if (const auto next = anyUnplayed(index))
        return next;
    if (!repeated_)
        return std::nullopt;
    // A new round, which does not begin with the track that the last one ended with.
    for (State& state : states_)
        state.played = false;
    return anyUnplayed(size() > 1 ? std::optional(index) : std::nullopt);
}

std::size_t PlayList::before(std::size_t index) {
    if (!shuffled_)
        return index > 0 ? index - 1 : 0;
    while (!history_.empty()) {
        const auto last = indexOf(history_.back());
        if (last && *last != index)
            return *last;
        history_.pop_back();
    }
    return index;
}

std::optional<std::size_t> PlayList::indexOf(std::uint32_t id) const noexcept {
    const auto found =
        std::ranges::find_if(states_, [id](const State& state) { return state.id == id; });
    if (found == states_.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - states_.begin());
}

std::optional<std::size_t> PlayList::anyUnplayed(std::optional<std::size_t> except) {
    std::vector<std::size_t> candidates;
    for (std::size_t index = 0; index < size(); ++index)
        if (!states_[index].played && index != except)
            candidates.push_back(index);
    if (candidates.empty())
        return std::nullopt;
    return candidates[random_() % candidates.size()];
}

} // namespace corvina::app
