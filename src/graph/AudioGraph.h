#pragma once

// The graph itself, without COM: samples in, a picture out.
//
// display() computes a new picture; paint() only shows the last one, at any size and on any device
// context. Settings take effect at the next display() or clear(). One thread; while display() lets
// pending messages be handled any member may be called, display() itself then does nothing.

#include "graph/BandLevels.h"
#include "graph/GraphSettings.h"
#include "graph/PeakMarks.h"
#include "graph/SampleBuffer.h"
#include "graph/SpectrumBars.h"
#include "graph/Surface.h"
#include "platform/Nesting.h"
#include "stream/SampleFeed.h"

#include <functional>
#include <span>
#include <windows.h>

namespace corvina {

class Frame;

class AudioGraph {
public:
    // block: SampleBuffer::blockBytes readable bytes.
    void takeSamples(const void* block) noexcept;
    // All samples that a player sent to its device last.
    void takeBlock(SampleBlock block);

    // 0 ... 100, as of the last display().
    [[nodiscard]] std::int32_t level() const noexcept { return level_; }

    // size: of the control in pixels, border included. betweenColumns is called many times while a
    // waveform is drawn.
    void display(const GraphSettings& settings, SIZE size,
                 const std::function<void()>& betweenColumns);

    // Leaves only background and border in the picture.
    void clear(const GraphSettings& settings);

    // bounds: logical units; size: of the control in pixels, border included.
    void paint(HDC dc, const RECT& bounds, SIZE size);

private:
    enum class Content { nothing, waveform, channelWaveforms, bars };

    void paintContent(HDC dc, const Frame& frame) const;
    [[nodiscard]] bool showAtSize(SIZE picture);
    // The block of the player, or else the samples that a host passed, taken as stereo.
    [[nodiscard]] SampleBlock currentBlock() const;
    void updateBars(const GraphSettings& settings);
    [[nodiscard]] std::span<const double> barLevels(const GraphSettings& settings) const noexcept;
    void drawBars(Surface& surface, const GraphSettings& settings, SIZE size) const;

    SampleBuffer samples_;
    SampleBlock block_; // without samples unless a player's was taken last
    BandLevels bands_;
    SpectrumBars bars_;
    PeakMarks peaks_;
    std::int32_t level_ = 0;
    Nesting displaying_;

    // What the visible surface shows, to draw it again at another size.
    Content content_ = Content::nothing;
    GraphSettings shown_;
    SampleBuffer shownSamples_;
    SampleBlock shownBlock_;

    Surface visible_;
    Surface hidden_; // gets the bars while the waveform is shown
};

} // namespace corvina
