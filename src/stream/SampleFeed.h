#pragma once

// How a graph follows a player without keeping it alive.
//
// A player has a SampleFeed, which the graphs that follow it share. When the player goes it
// disconnects the feed, and every graph finds that out at its next look. The interface is private:
// only the players of this library have it. One thread.

#include "com/Part.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace corvina {

// The samples that a player sent to its device last.
struct SampleBlock {
    // Frame after frame, a sample of each channel in a frame.
    std::vector<std::int16_t> samples = {};
    std::int32_t channels = 2;
    std::int32_t sampleRate = 44100; // Hz
};

class SampleProvider {
public:
    // False if nothing plays; block is then unchanged.
    [[nodiscard]] virtual bool latestSamples(SampleBlock& block) = 0;

protected:
    ~SampleProvider() = default;
};

class SampleFeed {
public:
    SampleFeed(IUnknown& player, SampleProvider& provider) noexcept
        : player_(&player), provider_(&provider) {}

    void disconnect() noexcept {
        player_ = nullptr;
        provider_ = nullptr;
    }
    [[nodiscard]] bool connected() const noexcept { return player_ != nullptr; }
    // Null once the player has gone.
    [[nodiscard]] ComPtr<IUnknown> player() const noexcept { return ComPtr<IUnknown>(player_); }
    // False if nothing plays, or the player has gone.
    [[nodiscard]] bool latestSamples(SampleBlock& block) const {
        return provider_ && provider_->latestSamples(block);
    }

private:
    IUnknown* player_;
    SampleProvider* provider_;
};

struct
#if defined(_MSC_VER)
    __declspec(uuid("c1f6d0a4-6b2e-4f57-9d0e-2b7a51c4e8f3"))
#endif
        IFollowedPlayer : IUnknown {
    [[nodiscard]] virtual std::shared_ptr<SampleFeed> sampleFeed() noexcept = 0;
};

} // namespace corvina

#if defined(__CRT_UUID_DECL)
__CRT_UUID_DECL(corvina::IFollowedPlayer, 0xc1f6d0a4, 0x6b2e, 0x4f57, 0x9d, 0x0e, 0x2b, 0x7a, 0x51,
                0xc4, 0xe8, 0xf3)
#endif

namespace corvina {

// The part of a player that lets graphs follow it.
class FollowedPlayerPart final : public Part<IFollowedPlayer> {
public:
    FollowedPlayerPart(IUnknown& outer, SampleProvider& provider)
        : Part(outer), feed_(std::make_shared<SampleFeed>(outer, provider)) {}

    [[nodiscard]] std::shared_ptr<SampleFeed> sampleFeed() noexcept override { return feed_; }
    // To be called first in the player's destruction.
    void disconnect() noexcept { feed_->disconnect(); }

private:
    std::shared_ptr<SampleFeed> feed_;
};

} // namespace corvina
