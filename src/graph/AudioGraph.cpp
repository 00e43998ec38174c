#include "graph/AudioGraph.h"

#include "graph/AmplitudeCurve.h"
#include "graph/Painting.h"
#include "platform/SavedContext.h"

#include <algorithm>

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
    return {std::clamp(control.cx - taken, LONG{0}, longestSide),
            std::clamp(control.cy - taken, LONG{0}, longestSide)};
}

std::span<const double> usedLevels(const BandLevels& bands, std::int32_t count) noexcept {
    return bands.levels().first(
        static_cast<std::size_t>(std::clamp(count, std::int32_t{0}, BandLevels::capacity)));
}

bool isMetafile(HDC dc) noexcept {
    const DWORD kind = ::GetObjectType(dc);
    return kind == OBJ_METADC || kind == OBJ_ENHMETADC;
}

// A flag that is set until the end of a scope.
class ScopedFlag {
public:
    explicit ScopedFlag(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;
    ~ScopedFlag() { flag_ = false; }

private:
    bool& flag_;
};

void drawBars(Surface& surface, const BandLevels& bands, const GraphSettings& settings, SIZE size) {
    if (!surface.resize(size))
        return;
    surface.clear(settings.backgroundColor);
    paintBars(surface.dc(), Frame(size), usedLevels(bands, settings.bands), settings);
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

void AudioGraph::display(const GraphSettings& settings, SIZE size,
                         const std::function<void()>& betweenColumns) {
    if (displaying_)
        return;
    const ScopedFlag displaying(displaying_);
    const SIZE picture = pictureSize(settings, size);
    if (settings.style == GraphStyle::amplitude) {
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
    drawBars(settings.style == GraphStyle::amplitude ? hidden_ : visible_, bands_, settings,
             picture);
}

void AudioGraph::clear(const GraphSettings& settings) {
    content_ = Content::nothing;
    shown_ = settings;
    for (Surface* surface : {&visible_, &hidden_})
        surface->clear(settings.backgroundColor);
}

void AudioGraph::paint(HDC dc, const RECT& bounds, SIZE size) {
    const LONG border = borderOf(shown_);
    const Frame control(bounds, size);
    if (border > 0)
        paintBorder(dc, control);
    const SIZE picture = pictureSize(shown_, size);
    const RECT inside = control.at(RECT{border, border, border + picture.cx, border + picture.cy});
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
    fill(dc, frame.bounds(), shown_.backgroundColor);
    if (content_ == Content::waveform)
        paintCurve(dc, frame, amplitudeCurve(shownSamples_, frame.picture()),
                   shown_.amplitudeColor);
    else if (content_ == Content::bars)
        paintBars(dc, frame, usedLevels(bands_, shown_.bands), shown_);
}

} // namespace corvina
