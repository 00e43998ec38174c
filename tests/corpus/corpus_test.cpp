// Files as public tools write them, played through the registered control: what the device would
// get is compared with what an independent decoder makes of the file. A cell that is known not to
// play right stands in known.txt with the reason, and a test that it still does not, so that the
// list shrinks.

#include "Cell.h"
#include "InstantDevice.h"
#include "support/PlayerHost.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <exception>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>

namespace corvina::test {
namespace {

constexpr std::size_t blockBytes = 8000;

struct Playback {
    long result = 0;
    bool ended = false;
    double seconds = 0; // by Info_Duration
    WAVEFORMATEX format{};
    Samples samples;
};

class Corpus : public testing::TestWithParam<Cell> {
public:
    // One for all files, as a player has.
    static PlayerHost& host() { return *host_; }

protected:
    static void SetUpTestSuite() { host_ = std::make_unique<PlayerHost>(); }
    static void TearDownTestSuite() { host_.reset(); }

    void TearDown() override {
        if (!host_->isPlaying())
            return;
        EXPECT_FALSE(GetParam().knownPlaying.empty() && GetParam().knownSeeking.empty())
            << "It still plays behind its end.";
        SetUpTestSuite();
    }

private:
    static inline std::unique_ptr<PlayerHost> host_;
};

// Plays the file to its end, from that place.
enum class From { start, second, betweenSeconds };
constexpr long secondMs = 1000;
constexpr long betweenMs = 1130;

Playback play(const Cell& cell, From from = From::start) {
    Playback playback;
    InstantDevice device;
    PlayerHost& host = Corpus::host();
    const std::size_t donePlays = host.donePlays();
    playback.result = host.start(cell.path());
    if (playback.result != 0)
        return playback;
    if (from == From::second)
        host.seek(secondMs / 1000);
    if (from == From::betweenSeconds && FAILED(host.control()->put_PositionMs(betweenMs)))
        throw std::runtime_error("PositionMs is refused");
    playback.ended = host.waitForDone(donePlays + 1);
    playback.format = device.format();
    playback.samples = device.samples();
    playback.seconds = host.duration();
    return playback;
}

std::string wrongFormat(const Cell& cell, const Playback& playback) {
    if (playback.result != 0)
        return "PlayStart returned " + std::to_string(playback.result);
    if (!playback.ended)
        return "it does not end";
    const WAVEFORMATEX& format = playback.format;
    const bool channelsFit =
        format.nChannels == cell.channels || (cell.channels > 2 && format.nChannels == 2);
    if (format.nSamplesPerSec != cell.rate || !channelsFit)
        return std::to_string(format.nSamplesPerSec) + " Hz of " +
               std::to_string(format.nChannels) + " channels";
    return {};
}

std::size_t blockSamples(const Playback& playback) {
    return blockBytes / std::max(1u, playback.format.wBitsPerSample / 8u);
}

std::string wrongPlayback(const Cell& cell) {
    const Playback playback = play(cell);
    if (std::string wrong = wrongFormat(cell, playback); !wrong.empty())
        return wrong;
    const Samples expected = cell.expected(playback.format.nChannels);
    if (std::string wrong = difference(cell, playback.format.nChannels, expected, playback.samples,
                                       blockSamples(playback));
        !wrong.empty())
        return wrong;
    const double seconds = static_cast<double>(expected.size() / playback.format.nChannels) /
                           static_cast<double>(cell.rate);
    const double slack = cell.judge == "later" ? 0.1 : 0.05;
    if (std::abs(playback.seconds - seconds) > slack)
        return "a duration of " + std::to_string(playback.seconds) + " s";
    return {};
}

std::string wrongBehind(const Cell& cell, From from) {
    const Playback playback = play(cell, from);
    if (std::string wrong = wrongFormat(cell, playback); !wrong.empty())
        return wrong;
    const Samples expected = cell.expected(playback.format.nChannels);
    const std::size_t milliseconds = from == From::second ? secondMs : betweenMs;
    const std::size_t place = cell.rate * milliseconds / 1000 * playback.format.nChannels;
    if (expected.size() <= place)
        return "too short";
    const Samples rest(expected.begin() + static_cast<std::ptrdiff_t>(place), expected.end());
    if (playback.samples.size() > rest.size() + 3 * blockSamples(playback))
        return "too long: " + std::to_string(playback.samples.size()) + " samples and not " +
               std::to_string(rest.size());
    return differenceBehindSeek(cell, playback.format.nChannels, rest, playback.samples,
                                blockSamples(playback));
}

std::string wrongSeek(const Cell& cell) {
    return wrongBehind(cell, From::second);
}

std::string wrongJump(const Cell& cell) {
    return wrongBehind(cell, From::betweenSeconds);
}

// What the control refuses with an exception is wrong as well.
template <typename Judge>
std::string judged(Judge judge, const Cell& cell) {
    try {
        return judge(cell);
    } catch (const std::exception& error) {
        return error.what();
    }
}

void expectAsKnown(const std::string& wrong, const std::string& known) {
    if (known.empty())
        EXPECT_EQ(wrong, "");
    else
        EXPECT_NE(wrong, "") << "It works now: take it from known.txt, where it says: " << known;
}

TEST_P(Corpus, plays_as_an_independent_decoder_decodes_it) {
    expectAsKnown(judged(&wrongPlayback, GetParam()), GetParam().knownPlaying);
}

TEST_P(Corpus, plays_on_right_from_its_second_second) {
    expectAsKnown(judged(&wrongSeek, GetParam()), GetParam().knownSeeking);
}

// In compressed sound a second is not where a block begins, and neither is any other time.
class CompressedCorpus : public Corpus {};

TEST_P(CompressedCorpus, plays_on_right_from_between_two_seconds) {
    expectAsKnown(judged(&wrongJump, GetParam()), GetParam().knownSeeking);
}

std::string testName(const testing::TestParamInfo<Cell>& info) {
    std::string name = info.param.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Files, Corpus, testing::ValuesIn(allCells()), testName);

std::vector<Cell> compressedCells() {
    std::vector<Cell> cells = allCells();
    std::erase_if(cells, [](const Cell& cell) {
        return cell.judge != "rough" && (cell.judge != "close" || !cell.name.ends_with(".wav"));
    });
    return cells;
}

INSTANTIATE_TEST_SUITE_P(Files, CompressedCorpus, testing::ValuesIn(compressedCells()), testName);

TEST(CorpusList, holds_hundreds_of_files) {
    EXPECT_GT(allCells().size(), 250u);
}

} // namespace
} // namespace corvina::test
