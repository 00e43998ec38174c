#pragma once

// The tracks of the queue in their order, and which of them follows another. Without a player, so
// it can be tested by itself.

#include "Track.h"

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace corvina::app {

class PlayList {
public:
    explicit PlayList(std::uint32_t seed = std::random_device{}()) : random_(seed) {}

    [[nodiscard]] const std::vector<Track>& tracks() const noexcept { return tracks_; }
    [[nodiscard]] std::size_t size() const noexcept { return tracks_.size(); }
    void add(Track track);
    void remove(std::size_t index);
    void clear() noexcept;
    // Takes a track from one place to another; those between move up or down by one.
    void move(std::size_t from, std::size_t to);
    // Where a track is after that move.
    [[nodiscard]] static std::size_t movedIndex(std::size_t index, std::size_t from,
                                                std::size_t to) noexcept;

    // A number that stays with the track wherever it is moved, and its place now.
    [[nodiscard]] std::uint32_t idOf(std::size_t index) const { return states_[index].id; }
    [[nodiscard]] std::optional<std::size_t> indexOf(std::uint32_t id) const noexcept;

    // Why a track could not be played; empty if nothing is known against it.
    [[nodiscard]] const std::wstring& failure(std::size_t index) const {
        return states_[index].failure;
    }
    void setFailure(std::size_t index, const std::wstring& words);

    void setShuffled(bool on);
    void setRepeated(bool on) noexcept { repeated_ = on; }
    [[nodiscard]] bool shuffled() const noexcept { return shuffled_; }
    [[nodiscard]] bool repeated() const noexcept { return repeated_; }

    // To be called for each track that is tried: shuffling takes each one once in a round.
    void markPlayed(std::size_t index);
    // Which track follows that one; none after the last unless the list is repeated.
    [[nodiscard]] std::optional<std::size_t> after(std::size_t index);
    // The track that was tried before the last one, or the one before it in the list.
    [[nodiscard]] std::size_t before(std::size_t index);

private:
    struct State {
        std::uint32_t id;
        std::wstring failure;
        bool played = false; // in this round
    };

    [[nodiscard]] std::optional<std::size_t> anyUnplayed(std::optional<std::size_t> except);

    std::vector<Track> tracks_;
    std::vector<State> states_;          // of the track with the same index
    std::vector<std::uint32_t> history_; // ids in the order they were tried
    std::uint32_t nextId_ = 0;
    bool shuffled_ = false;
    bool repeated_ = false;
    std::mt19937 random_;
};

} // namespace corvina::app
