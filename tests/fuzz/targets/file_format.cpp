// The format of a file in words, from the heads of all kinds of files.

#include "fuzz/FuzzTarget.h"
#include "fuzz/MediaStart.h"
#include "fuzz/MemoryFiles.h"
#include "sources/FormatOfFile.h"

namespace corvina::fuzz {
namespace {

void useHead(std::span<const std::uint8_t> input) {
    const MemoryFiles disk(input);
    const std::wstring words = formatOfFile(L"C:\\a", MemoryFiles::files());
    require(words.size() <= 60, "the words are those of a format");
    for (const wchar_t letter : words)
        require(letter >= L' ' && letter < 127, "nothing of the file stands in the words");
}

std::vector<Bytes> headSeeds() {
    std::vector<Bytes> seeds;
    for (const char* const name :
         {"clip.wav", "clip-24bit.wav", "clip-rf64.wav", "clip.w64", "clip.aiff", "clip.aifc",
          "clip.au", "clip.voc", "clip.caf", "clip.ogg", "clip.oga", "clip.opus", "clip.flac",
          "clip-tagged.flac", "clip.ape", "tune.mp3", "clip.mp2", "tune.wma", "tune.m4a"})
        seeds.push_back(mediaStart(name, 700));
    return seeds;
}

const FuzzTarget head{"file_format", &useHead, &headSeeds, 1024};

} // namespace
} // namespace corvina::fuzz
