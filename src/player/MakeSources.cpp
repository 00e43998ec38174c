#include "player/MakeSources.h"

#include "sources/DecAPE.h"
#include "sources/DecCDA.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "sources/DecWAV.h"
#include "sources/DecWMAMP3.h"
#include "sources/MediaFoundationSource.h"
#include "sources/SndfileSource.h"
#include "sources/SourceAlias.h"

namespace corvina {
namespace {

using SourceFactory = std::unique_ptr<cSoundSTRM> (*)();

template <typename Source>
std::unique_ptr<cSoundSTRM> make() {
    return std::make_unique<Source>();
}

std::unique_ptr<cSoundSTRM> makeWaveAlias() {
    return std::make_unique<SourceAlias<DecWAV>>(
        std::vector<std::wstring>{L"wave", L"bwf", L"rf64"});
}

// Behind the source of w64 files: these characters are part of the extension.
std::unique_ptr<cSoundSTRM> makeLongWaveAlias() {
    return std::make_unique<SourceAlias<DecWAV>>(std::vector<std::wstring>{L"bw64"});
}

std::unique_ptr<cSoundSTRM> makeMediaAlias() {
    return std::make_unique<SourceAlias<DecWMAMP3>>(std::vector<std::wstring>{L"mp2", L"asf"});
}

// The order in which the sources are tried for a file.
constexpr SourceFactory sourceFactories[] = {
    &make<DecAPE>,                // Monkey's Audio
    &make<DecOGG>,                // Ogg Vorbis
    &make<DecWAV>,                // RIFF/WAVE
    &make<DecSND>,                // what libsndfile reads
    &make<DecWMAMP3>,             // what Windows Media reads
    &make<DecCDA>,                // audio CD tracks
    &makeWaveAlias,               // further names of RIFF/WAVE files
    &makeMediaAlias,              // and of what Windows Media reads
    &make<SndfileSource>,         // FLAC, Opus and more of what libsndfile reads
    &makeLongWaveAlias,           // RIFF/WAVE with lengths of 64 bits
    &make<MediaFoundationSource>, // MP4 and AAC
};

} // namespace

std::vector<std::unique_ptr<cSoundSTRM>> makeSources() {
    std::vector<std::unique_ptr<cSoundSTRM>> sources;
    for (const SourceFactory factory : sourceFactories)
        sources.push_back(factory());
    return sources;
}

} // namespace corvina
