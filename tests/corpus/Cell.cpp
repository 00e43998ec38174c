#include "Cell.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <ostream>
#include <sstream>

namespace corvina::test {
namespace {

// Programs run in build/mingw/tests.
const std::string corpus = "..\\..\\corpus\\";
const std::string knownList = "..\\..\\..\\tests\\corpus\\known.txt";

constexpr double sameSound = 0.9999;
constexpr double roughlySameSound = 0.999;
// The decoder of Windows Media fills noise in.
constexpr double sameSoundWithNoise = 0.995;
// A decoder that begins in the middle fills in what it cannot know.
constexpr double sameSoundBehindSeek = 0.999;

// How far the sound may be shifted, in milliseconds, and that of readers that come later.
constexpr std::size_t mostShiftMs = 30;
constexpr std::size_t mostLateMs = 100;

double likeness(const Samples& expected, const Samples& heard, std::ptrdiff_t lag,
                std::size_t channels) {
    const std::ptrdiff_t shift = lag * static_cast<std::ptrdiff_t>(channels);
    const auto from = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, -shift));
    const auto heardFrom = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, shift));
    if (from >= expected.size() || heardFrom >= heard.size())
        return 0;
    const std::size_t count = std::min(expected.size() - from, heard.size() - heardFrom);
    double both = 0;
    double one = 0;
    double other = 0;
    for (std::size_t index = 0; index < count; ++index) {
        const double x = expected[from + index];
        const double y = heard[heardFrom + index];
        both += x * y;
        one += x * x;
        other += y * y;
    }
    return one > 0 && other > 0 ? both / std::sqrt(one * other) : 0;
}

struct Alignment {
    std::ptrdiff_t lag = 0; // frames that the heard sound comes late
    double likeness = 0;
};

// The best within so many milliseconds.
Alignment align(const Cell& cell, const Samples& expected, const Samples& heard,
                std::size_t channels, double enough, std::size_t milliseconds) {
    const auto most = static_cast<std::ptrdiff_t>(cell.rate * milliseconds / 1000);
    Alignment best;
    for (std::ptrdiff_t distance = 0; distance <= most && best.likeness < enough; ++distance)
        for (const std::ptrdiff_t lag : {distance, -distance})
            if (const double now = likeness(expected, heard, lag, channels); now > best.likeness)
                best = {lag, now};
    return best;
}

// The last block is sent whole, and what stands in it behind the end of the sound is no part of it.
Samples withoutLastBlock(const Samples& heard, std::size_t block) {
    return {heard.begin(),
            heard.end() - static_cast<std::ptrdiff_t>(std::min(heard.size(), block))};
}

std::string firstDifference(const Samples& expected, const Samples& heard, int most) {
    for (std::size_t index = 0; index < std::min(expected.size(), heard.size()); ++index)
        if (std::abs(expected[index] - heard[index]) > most) {
            std::ostringstream text;
            text << "sample " << index << " of " << expected.size() << " is " << heard[index]
                 << " and not " << expected[index];
            return text.str();
        }
    return {};
}

std::string unlike(const Alignment& found) {
    return "likeness " + std::to_string(found.likeness) + " at " + std::to_string(found.lag) +
           " frames";
}

bool isExact(const Cell& cell) {
    return cell.judge == "exact" || cell.judge == "lsb";
}

bool isLater(const Cell& cell) {
    return cell.judge == "later";
}

int mostDifference(const Cell& cell) {
    return cell.judge == "lsb" ? 1 : 0;
}

struct Known {
    std::string playing;
    std::string seeking;
};

std::map<std::string, Known> knownReasons() {
    std::map<std::string, Known> result;
    std::ifstream list(knownList);
    std::string line;
    while (std::getline(list, line)) {
        std::istringstream words(line);
        std::string what;
        std::string name;
        std::string reason;
        if (!(words >> what >> name) || what.front() == '#')
            continue;
        std::getline(words >> std::ws, reason);
        if (what != "seek")
            result[name].playing = reason;
        if (what != "play")
            result[name].seeking = reason;
    }
    return result;
}

} // namespace

std::wstring Cell::path() const {
    const std::string text = corpus + name;
    return {text.begin(), text.end()};
}

Samples Cell::expected(std::size_t heardChannels) const {
    std::ifstream file(corpus + name + (heardChannels == channels ? ".pcm" : ".mix.pcm"),
                       std::ios::binary | std::ios::ate);
    const std::streamoff bytes = file ? static_cast<std::streamoff>(file.tellg()) : 0;
    Samples samples(static_cast<std::size_t>(bytes) / sizeof(std::int16_t));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(samples.data()), static_cast<std::streamsize>(bytes));
    return samples;
}

std::ostream& operator<<(std::ostream& out, const Cell& cell) {
    return out << cell.name;
}

std::vector<Cell> allCells() {
    const std::map<std::string, Known> known = knownReasons();
    std::vector<Cell> cells;
    std::ifstream list(corpus + "cells.txt");
    for (Cell cell; list >> cell.name >> cell.rate >> cell.channels >> cell.judge;) {
        const auto found = known.find(cell.name);
        cell.knownPlaying = found == known.end() ? "" : found->second.playing;
        cell.knownSeeking = found == known.end() ? "" : found->second.seeking;
        cells.push_back(cell);
    }
    return cells;
}

std::string difference(const Cell& cell, std::size_t channels, const Samples& expected,
                       const Samples& heard, std::size_t block) {
    const bool exact = isExact(cell);
    const std::size_t least =
        exact ? expected.size() : expected.size() - std::min(expected.size(), block);
    // The last block is sent whole, and what is left in the converter may begin another.
    const std::size_t most = expected.size() + (isLater(cell) ? 4 : 2) * block;
    if (expected.empty() || heard.size() < least || heard.size() > most)
        return std::to_string(heard.size()) + " samples and not " + std::to_string(expected.size());
    if (exact)
        return firstDifference(expected, heard, mostDifference(cell));
    const Samples sure(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(least));
    const double enough = isLater(cell)           ? sameSoundWithNoise
                          : cell.judge == "rough" ? roughlySameSound
                                                  : sameSound;
    // A reader that keeps what it makes before the start may end when the file's length is over,
    // and so that much before the sound does.
    const Alignment found = isLater(cell) ? align(cell, sure, withoutLastBlock(heard, block),
                                                  channels, enough, mostLateMs)
                                          : align(cell, sure, heard, channels, enough, mostShiftMs);
    return found.likeness >= enough ? std::string() : unlike(found);
}

std::string differenceBehindSeek(const Cell& cell, std::size_t channels, const Samples& expected,
                                 const Samples& heard, std::size_t block) {
    const bool exact = isExact(cell);
    const std::size_t sureSize =
        exact ? expected.size() : expected.size() - std::min(expected.size() / 2, block);
    const Samples sure(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(sureSize));
    const double enough = exact           ? 1.0 - 1e-7
                          : isLater(cell) ? sameSoundWithNoise
                                          : sameSoundBehindSeek;
    const Alignment found = isLater(cell) ? align(cell, sure, withoutLastBlock(heard, block),
                                                  channels, enough, mostLateMs)
                                          : align(cell, sure, heard, channels, enough, mostShiftMs);
    const double least = std::min(enough, sameSoundBehindSeek);
    if (!exact || found.likeness < least)
        return found.likeness >= least ? std::string() : unlike(found);
    const std::ptrdiff_t shift = found.lag * static_cast<std::ptrdiff_t>(channels);
    const Samples rest(sure.begin() + std::max<std::ptrdiff_t>(0, -shift), sure.end());
    const Samples behind(heard.begin() + std::max<std::ptrdiff_t>(0, shift), heard.end());
    return firstDifference(rest, behind, mostDifference(cell));
}

} // namespace corvina::test
