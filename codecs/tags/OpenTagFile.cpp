#include "OpenTagFile.h"

#include "LimitedFile.h"

#include <aifffile.h>
#include <apefile.h>
#include <asffile.h>
#include <flacfile.h>
#include <id3v2framefactory.h>
#include <id3v2header.h>
#include <mp4file.h>
#include <mpegfile.h>
#include <oggflacfile.h>
#include <opusfile.h>
#include <speexfile.h>
#include <taglib.h>
#include <vorbisfile.h>
#include <wavfile.h>

namespace corvina::tags {
namespace {

using FilePointer = std::unique_ptr<TagLib::File>;

// Rates and lengths are the decoders' business, and finding them takes long.
constexpr bool withProperties = false;

template <typename Kind>
FilePointer open(TagLib::IOStream& stream) {
    if (!Kind::isSupported(&stream))
        return nullptr;
    FilePointer file = std::make_unique<Kind>(&stream, withProperties);
    return file->isValid() ? std::move(file) : nullptr;
}

// Until TagLib 2 these want to know who makes the parts of their tags.
template <typename Kind>
FilePointer openWithFrames(TagLib::IOStream& stream) {
#if TAGLIB_MAJOR_VERSION >= 2
    return open<Kind>(stream);
#else
    if (!Kind::isSupported(&stream))
        return nullptr;
    FilePointer file =
        std::make_unique<Kind>(&stream, TagLib::ID3v2::FrameFactory::instance(), withProperties);
    return file->isValid() ? std::move(file) : nullptr;
#endif
}

bool isMpegAudioFrom(LimitedFile& stream, unsigned start) {
    stream.beginAt(start);
    return TagLib::MPEG::File::isSupported(&stream);
}

// Begins the stream with MPEG audio, or the tag in front of it, that other bytes hide: TagLib looks
// for it in the first thousand bytes only. False if there is none.
bool moveToMpegAudio(LimitedFile& stream) {
    constexpr unsigned farthest = 64 * 1024;
    stream.seek(0, TagLib::IOStream::Beginning);
    const TagLib::ByteVector start = stream.readBlock(farthest);
    const TagLib::ByteVector mark = TagLib::ID3v2::Header::fileIdentifier();
    // A tag must be the very first: only then it is passed over in the search for audio.
    for (int at = start.find(mark); at >= 0; at = start.find(mark, static_cast<unsigned>(at) + 1))
        if (isMpegAudioFrom(stream, static_cast<unsigned>(at)))
            return true;
    // Half of what one search sees.
    constexpr unsigned step = 512;
    for (unsigned at = step; at < start.size(); at += step)
        if (isMpegAudioFrom(stream, at))
            return true;
    return false;
}

} // namespace

std::unique_ptr<TagLib::File> openTagFile(LimitedFile& stream) {
    // MPEG audio comes last: it has no certain mark, and other kinds may stand behind its tag.
    using Open = FilePointer (*)(TagLib::IOStream&);
    constexpr Open kinds[] = {&open<TagLib::Ogg::Vorbis::File>,
                              &open<TagLib::Ogg::Opus::File>,
                              &open<TagLib::Ogg::FLAC::File>,
                              &open<TagLib::Ogg::Speex::File>,
                              &openWithFrames<TagLib::FLAC::File>,
                              &open<TagLib::MP4::File>,
                              &open<TagLib::ASF::File>,
                              &open<TagLib::RIFF::WAV::File>,
                              &open<TagLib::RIFF::AIFF::File>,
                              &open<TagLib::APE::File>,
                              &openWithFrames<TagLib::MPEG::File>};
    for (const Open kind : kinds)
        if (FilePointer file = kind(stream))
            return file;
    return moveToMpegAudio(stream) ? openWithFrames<TagLib::MPEG::File>(stream) : nullptr;
}

} // namespace corvina::tags
