#include "graph/AudioGraph.h"

#include "graph/AmplitudeCurve.h"
#include "graph/ChannelCurves.h"
#include "graph/Painting.h"
#include "platform/SavedContext.h"

#include <algorithm>
#include <array>
#include <utility>

namespace corvina {
namespace {

// No window is larger; a container's size in other units may be.
constexpr LONG longestSide = 32767;

LONG borderOf(const GraphSettings& settings) noexcept {
    return settings.border ? borderPixels : 0;
}

// What the border leaves of the control.
SIZE pictureSize(const GraphSettings& settings, SIZE control) noexcept {
    const LONG taken = 2 * borderOf(settings);
    return {std::clamp(control.cx, taken, taken + longestSide) - taken,
            std::clamp(control.cy, taken, taken + longestSide) - taken};
}

std::span<const double> usedLevels(const BandLevels& bands, std::int32_t count) noexcept {
    return bands.levels().first(
        static_cast<std::size_t>(std::clamp(count, std::int32_t{0}, BandLevels::capacity)));
}

bool isMetafile(HDC dc) noexcept {
    const DWORD kind = ::GetObjectType(dc);
    return kind == OBJ_METADC || kind == OBJ_ENHMETADC;
}

// The published bars have neither decibels nor octaves.
bool hasPublishedBars(const GraphSettings& settings) noexcept {
    return settings.levelScale == LevelScale::linear &&
           settings.frequencyAxis == FrequencyAxis::bands;
}

void paintChannels(HDC dc, const Frame& frame, const SampleBlock& block, COLORREF color) {
    for (const std::vector<POINT>& curve : channelCurves(block, frame.picture()))
        paintCurve(dc, frame, curve, color);
}

// Draws the line in one go, after it was computed: until then the picture before is painted.
void drawCurve(Surface& surface, const std::vector<POINT>& corners, const GraphSettings& settings,
               SIZE size) {
    if (!surface.resize(size))
        return;
    surface.clear(settings.backgroundColor);
    paintCurve(surface.dc(), Frame(size), corners, settings.amplitudeColor);
}

} // namespace

void AudioGraph::takeSamples(const void* block) noexcept {
    samples_.take(block);
    block_.samples.clear();
}

void AudioGraph::takeBlock(SampleBlock block) {
    std::array<std::int16_t, SampleBuffer::sampleCount / 2> first{};
    static_assert(sizeof first >= SampleBuffer::blockBytes);
    std::copy_n(block.samples.begin(), std::min(block.samples.size(), first.size()), first.begin());
    samples_.take(first.data());
    block_ = std::move(block);
}

SampleBlock AudioGraph::currentBlock() const {
    if (!block_.samples.empty())
        return block_;
    SampleBlock block;
    for (std::size_t index = 0; index + 1 < SampleBuffer::blockBytes / 2; ++index)
        block.samples.push_back(samples_[index]);
    return block;
}

void AudioGraph::updateBars(const GraphSettings& settings) {
    if (hasPublishedBars(settings))
        bars_.reset();
    else
        bars_.update(samples_, currentBlock(), settings);
    if (settings.peakHold)
        peaks_.update(barLevels(settings), settings.framesPerSecond);
    else
        peaks_.reset();
}

std::span<const double> AudioGraph::barLevels(const GraphSettings& settings) const noexcept {
    return hasPublishedBars(settings) ? usedLevels(bands_, settings.bands) : bars_.levels();
}

void AudioGraph::drawBars(Surface& surface, const GraphSettings& settings, SIZE size) const {
    if (!surface.resize(size))
        return;
    surface.clear(settings.backgroundColor);
    paintBars(surface.dc(), Frame(size), barLevels(settings), settings);
    paintPeaks(surface.dc(), Frame(size), peaks_.levels(), settings);
}

void AudioGraph::display(const GraphSettings& settings, SIZE size,
                         const std::function<void()>& betweenColumns) {
    if (displaying_.underWay())
        return;
    const Nesting::Scope displaying(displaying_);
    const SIZE picture = pictureSize(settings, size);
    if (settings.style == GraphStyle::amplitude && settings.channelWaveforms) {
        shownBlock_ = currentBlock();
        content_ = Content::channelWaveforms;
        if (visible_.resize(picture)) {
            visible_.clear(settings.backgroundColor);
            paintChannels(visible_.dc(), Frame(picture), shownBlock_, settings.amplitudeColor);
        }
    } else if (settings.style == GraphStyle::amplitude) {
        drawCurve(visible_, amplitudeCurve(samples_, picture, betweenColumns), settings, picture);
        content_ = Content::waveform;
        shownSamples_ = samples_;
    } else {
        content_ = Content::bars;
    }
    shown_ = settings;

    // The level comes from the spectrum in both styles, so the spectrum is always computed.
    bands_.update(samples_, settings.bands);
    level_ = bands_.loudness();
    updateBars(settings);
    drawBars(settings.style == GraphStyle::amplitude ? hidden_ : visible_, settings, picture);
}

void AudioGraph::clear(const GraphSettings& settings) {
    content_ = Content::nothing;
    shown_ = settings;
    peaks_.reset();
    for (Surface* surface : {&visible_, &hidden_})
        surface->clear(settings.backgroundColor);
}

void AudioGraph::paint(HDC dc, const RECT& bounds, SIZE size) {
    const LONG border = borderOf(shown_);
    const Frame control(bounds, {std::max(size.cx, LONG{0}), std::max(size.cy, LONG{0})});
    if (border > 0)
        paintBorder(dc, control);
    const SIZE picture = pictureSize(shown_, size);
    // Not in order: bounds that run upwards keep their direction, and the picture stays upright.
    const POINT first = control.at(border, border);
    const POINT last = control.at(border + picture.cx, border + picture.cy);
    const RECT inside{first.x, first.y, last.x, last.y};
    if (!isMetafile(dc) && showAtSize(picture)) {
        ::StretchBlt(dc, inside.left, inside.top, inside.right - inside.left,
                     inside.bottom - inside.top, visible_.dc(), 0, 0, picture.cx, picture.cy,
                     SRCCOPY);
        return;
    }
    const SavedContext saved(dc);
    ::IntersectClipRect(dc, inside.left, inside.top, inside.right, inside.bottom);
    paintContent(dc, Frame(inside, picture));
}

// False if the visible surface cannot have that size.
bool AudioGraph::showAtSize(SIZE picture) {
    if (visible_.width() == picture.cx && visible_.height() == picture.cy)
        return !visible_.empty();
    if (!visible_.resize(picture))
        return false;
    paintContent(visible_.dc(), Frame(picture));
    return true;
}

void AudioGraph::paintContent(HDC dc, const Frame& frame) const {
    fill(dc, frame.at(RECT{0, 0, frame.picture().cx, frame.picture().cy}), shown_.backgroundColor);
    if (content_ == Content::waveform)
        paintCurve(dc, frame, amplitudeCurve(shownSamples_, frame.picture()),
                   shown_.amplitudeColor);
    else if (content_ == Content::channelWaveforms)
        paintChannels(dc, frame, shownBlock_, shown_.amplitudeColor);
    else if (content_ == Content::bars) {
        paintBars(dc, frame, barLevels(shown_), shown_);
        paintPeaks(dc, frame, peaks_.levels(), shown_);
    }
}

} // namespace corvina
