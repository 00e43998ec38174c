#include "RealFile.h"

#include <fstream>
#include <ostream>
#include <windows.h>

namespace corvina::test {

namespace {

constexpr const wchar_t* flac = L"flac\\test\\flac-to-flac-metadata-test-files\\";
constexpr Whole cutOff = Whole::cutOff;

// The codecs' sources, relative to the folder in which tests run.
std::wstring unpacked(const std::wstring& path) {
    return L"..\\..\\codecs\\" + path;
}

} // namespace

std::wstring tagLibraryFile(const std::wstring& name) {
    return unpacked(L"taglib\\tests\\data\\" + name);
}

std::wstring RealFile::file() const {
    return unpacked(std::wstring(package) + path);
}

std::ostream& operator<<(std::ostream& out, const RealFile& file) {
    for (const wchar_t* letter = file.path; *letter != 0; ++letter)
        out << (*letter < 128 ? static_cast<char>(*letter) : '_');
    return out;
}

std::string tagLibraryVersion() {
    std::ifstream stamp("../../codecs/taglib/.fetched");
    std::string package;
    std::getline(stamp, package);
    return package.substr(package.find('_') + 1);
}

std::vector<std::wstring> tagLibraryFiles() {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = ::FindFirstFileW(tagLibraryFile(L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return names;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            names.emplace_back(found.cFileName);
    } while (::FindNextFileW(search, &found));
    ::FindClose(search);
    return names;
}

const std::vector<RealFile>& playableFiles() {
    static const std::vector<RealFile> files{
        // test_wav.cpp of the tag library
        {L"empty.wav", "WAV, 16 bits", 3675, 2, 1000},
        {L"pcm_with_fact_chunk.wav", "WAV, 16 bits", 3675, 2, 1000},
        {L"alaw.wav", "WAV, A-law", 3550, 2, 8000},
        {L"uint8we.wav", "WAV, 8 bits", 2937, 2, 8000},
        {L"float64.wav", "WAV, 64 bits floating point", 97, 2, 44100},
        {L"infloop.wav", "WAV, 8 bits", 0, 1, 11025, L""},
        {.path = L"duplicate_tags.wav", .format = "WAV, 16 bits", .title = L"Title1"},
        // test_aiff.cpp
        {L"empty.aiff", "AIFF, 16 bits", 67, 1, 44100},
        {L"alaw.aifc", "AIFF-C, A-law", 37, 1, 44100},
        {.path = L"duplicate_id3v2.aiff", .format = "AIFF, 16 bits", .title = L"Title1"},
        {L"noise.aif", "AIFF, 24 bits"},
        {L"noise_odd.aif", "AIFF, 24 bits"},
        // test_ape.cpp
        {L"mac-399.ape", "Monkey's Audio, 16 bits", 3550, 2, 44100, L"", L""},
        {L"mac-399-tagged.ape", "Monkey's Audio, 16 bits", 3550, 2, 44100},
        {L"mac-399-id3v2.ape", "Monkey's Audio, 16 bits", 3550, 2, 44100},
        {L"mac-396.ape", "Monkey's Audio, 16 bits", 3685, 2, 44100},
        {.path = L"mac-390-hdr.ape",
         .format = "Monkey's Audio, 16 bits",
         .milliseconds = 15630,
         .channels = 2,
         .rate = 44100,
         .whole = cutOff},
        // test_asf.cpp
        {L"silence-1.wma", "Windows Media Audio", 3712, 2, 48000, L"test"},
        {L"lossless.wma", "Windows Media Audio Lossless", 3549, 2, 44100},
        // test_flac.cpp
        {L"sinewave.flac", "FLAC, 16 bits", 3550, 2, 44100},
        {.path = L"multiple-vc.flac", .format = "FLAC, 16 bits", .artist = L"Artist 1"},
        {.path = L"silence-44-s.flac", .format = "FLAC, 16 bits", .title = L"Silence"},
        {.path = L"no-tags.flac", .format = "FLAC, 16 bits", .title = L"", .artist = L""},
        {L"zero-sized-padding.flac", "FLAC, 16 bits"},
        {.path = L"empty-seektable.flac", .format = "FLAC, 24 bits", .whole = cutOff},
        // test_ogg.cpp, test_oggflac.cpp and test_opus.cpp
        {L"empty.ogg", "Ogg Vorbis", 3685, 2, 44100},
        {L"empty_vorbis.oga", "Ogg Vorbis"},
        {L"test.ogg", "Ogg Vorbis"},
        {L"empty_flac.oga", "Ogg FLAC, 16 bits", 3705},
        {L"correctness_gain_silent_output.opus", "Ogg Opus", 7737, 1, 48000, nullptr, L""},
        // test_mp4.cpp
        {L"has-tags.m4a", "AAC", 3708, 2, 44100, nullptr, L"Test Artist"},
        {L"empty_alac.m4a", "Apple Lossless, 16 bits", 3705, 2, 44100},
        {.path = L"non-full-meta.m4a", .format = "AAC", .artist = L"Test Artist!!!!"},
        {L"no-tags.m4a", "AAC", 3707, 2, 44100, L"", L""},
        {L"gnre.m4a", "AAC"},
        {L"covr-junk.m4a", "AAC"},
        // The package's tests say 22050 Hz: the decoder makes the upper half of the sound by
        // itself.
        {.path = L"zero-length-mdat.m4a",
         .format = "AAC",
         .milliseconds = 1115,
         .channels = 1,
         .rate = 44100,
         .leadIn = 119},
        {.path = L"nonprintable-atom-type.m4a",
         .format = "AAC",
         .channels = 1,
         .rate = 32000,
         .since = 2},
        // test_mpeg.cpp, test_id3v2.cpp and test_fileref.cpp
        {.path = L"empty1s.aac",
         .format = "AAC",
         .milliseconds = 1176,
         .channels = 1,
         .rate = 11025,
         .since = 2},
        {L"bladeenc.mp3", "MP3", 3553, 1, 44100},
        {L"xing.mp3", "MP3", 2064},
        {L"invalid-frames1.mp3", "MP3", 392, 2, 44100},
        {L"invalid-frames2.mp3", "MP3", 314, 2, 44100},
        {L"invalid-frames3.mp3", "MP3", 183, 2, 44100},
        {.path = L"duplicate_id3v2.mp3", .format = "MP3", .rate = 44100},
        {L"ape.mp3", "MP3"},
        {L"ape-id3v1.mp3", "MP3"},
        {L"ape-id3v2.mp3", "MP3"},
        {L"id3v22-tda.mp3", "MP3"},
        {.path = L"garbage.mp3", .format = "MP3", .title = L"Title A", .artist = L"Artist A"},
        {.path = L"toc_many_children.mp3", .format = "MP3", .whole = cutOff},
        // Of these the first few thousand bytes. What length the reader of the system makes of such
        // a
        // file is its own business.
        {.path = L"lame_cbr.mp3", .format = "MP3", .channels = 1, .rate = 44100, .whole = cutOff},
        {.path = L"lame_vbr.mp3", .format = "MP3", .channels = 1, .rate = 44100, .whole = cutOff},
        {.path = L"rare_frames.mp3",
         .format = "MP3",
         .channels = 2,
         .rate = 44100,
         .whole = cutOff},
        {.path = L"mpeg2.mp3", .format = "MP3", .whole = cutOff},
        {.path = L"itunes10.mp3",
         .format = "MP3",
         .title = L"iTunes10MP3",
         .artist = L"Artist",
         .whole = cutOff,
         .since = 2},
        // mpg123, plain_id3.txt; and some of FLAC's under names that no code page holds at once
        {.path = L"sweep.mp3",
         .format = "MP3",
         .title = L"mpg123 test sweep",
         .artist = L"D\u00E4 m\u00E4int\u00E4\u00E4ner du tout les jours",
         .package = L"mpg123\\src\\tests\\"},
        {.path = L"Pr\u00F8ve.flac", .format = "FLAC, 8 bits", .package = flac},
        {.path = L"\u05E9\u05DC\u05D5\u05DD.flac", .format = "FLAC, 8 bits", .package = flac},
        {.path = L"\U0001F914.flac", .format = "FLAC, 8 bits", .package = flac},
    };
    return files;
}

} // namespace corvina::test
