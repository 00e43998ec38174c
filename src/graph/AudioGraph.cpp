#include "graph/AudioGraph.h"

#include "platform/SavedContext.h"
#include "graph/AmplitudeCurve.h"
#include "graph/Painting.h"

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

class Raised {
public:
    explicit Raised(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;
    ~Raised() { flag_ = false; }

private:
    bool& flag_;
};

void drawBars(Surface& surface, const BandLevels& bands, const GraphSettings& settings, SIZE size) {
    if (!surface.resize(size))
        return;
    surface.BackColor(settings.backgroundColor);
    surface.Cls();
    paintBars(surface.dc(), Frame(size), usedLevels(bands, settings.bands), settings);
}

// The whole line at once: a picture that is painted meanwhile is the one before, never half of one.
void drawCurve(Surface& surface, const std::vector<POINT>& corners, const GraphSettings& settings,
               SIZE size) {
    if (!surface.resize(size))
        return;
    surface.ForeColor(settings.amplitudeColor);
    surface.BackColor(settings.backgroundColor);
    surface.Cls();
    paintCurve(surface.dc(), Frame(size), corners, surface.ForeColor());
}

} // namespace

void AudioGraph::display(const GraphSettings& settings, SIZE size,
                         const std::function<void()>& betweenColumns) {
    if (displaying_)
        return;
    const Raised displaying(displaying_);
    const SIZE picture = pictureSize(settings, size);
    if (settings.style == GraphStyle::amplitude) {
        drawCurve(visible_, amplitudeCurve(samples_, picture, betweenColumns), settings, picture);
        content_ = Content::waveform;
        shownSamples_ = samples_;
    } else {
        content_ = Content::bars;
    }
    shown_ = settings;

    // The level follows the spectrum in both styles.
    bands_.update(samples_, settings.bands);
    level_ = bands_.loudness();
    drawBars(settings.style == GraphStyle::amplitude ? hidden_ : visible_, bands_, settings,
             picture);
}

void AudioGraph::clear(const GraphSettings& settings) {
    content_ = Content::nothing;
    shown_ = settings;
    for (Surface* surface : {&visible_, &hidden_}) {
        surface->BackColor(settings.backgroundColor);
        surface->Cls();
    }
}

void AudioGraph::paint(HDC dc, const RECT& bounds, SIZE size) {
    const LONG border = borderOf(shown_);
    const Frame whole(bounds, size);
    if (border > 0)
        paintBorder(dc, whole);
    const SIZE picture = pictureSize(shown_, size);
    const RECT inside = whole.at(RECT{border, border, border + picture.cx, border + picture.cy});
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

// False where the visible surface cannot have that size.
bool AudioGraph::showAtSize(SIZE picture) {
    if (visible_.ScaleWidth() == picture.cx && visible_.ScaleHeight() == picture.cy)
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
