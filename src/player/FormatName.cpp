#include "player/FormatName.h"

#include "player/SourceList.h"
#include "runtime/Text.h"
#include "stream/cSoundSTRM.h"

namespace corvina {
namespace {

std::wstring waveFormatName(const WAVEFORMATEX* format) {
    switch (format ? format->wFormatTag : 0) {
    case WAVE_FORMAT_PCM:
        return L"WAV (PCM)";
    case WAVE_FORMAT_ADPCM:
        return L"WAV (Microsoft ADPCM)";
    case WAVE_FORMAT_IMA_ADPCM:
        return L"WAV (IMA ADPCM)";
    case WAVE_FORMAT_ALAW:
        return L"WAV (A-law)";
    case WAVE_FORMAT_MULAW:
        return L"WAV (mu-law)";
    case WAVE_FORMAT_GSM610:
        return L"WAV (GSM 6.10)";
    default:
        return L"WAV";
    }
}

} // namespace

std::wstring formatName(const std::wstring& file, cSoundSTRM& source) {
    static constexpr struct {
        const wchar_t* extension;
        const wchar_t* name;
    } names[] = {
        {L"ape", L"Monkey's Audio"},
        {L"ogg", L"Ogg Vorbis"},
        {L"mp3", L"MPEG layer 3"},
        {L"wma", L"Windows Media Audio"},
        {L"wmv", L"Windows Media Video"},
        {L"au", L"Sun audio"},
        {L"snd", L"Sun audio"},
        {L"aif", L"AIFF"},
        {L"aiff", L"AIFF"},
        {L"aifc", L"AIFF-C"},
        {L"voc", L"Creative Voice"},
        {L"vox", L"Dialogic ADPCM"},
        {L"cda", L"Audio CD track"},
    };
    const std::wstring extension = lowerCase(fileExtension(file));
    if (extension == L"wav")
        return waveFormatName(source.WFXPointer());
    for (const auto& [known, name] : names)
        if (extension == known)
            return name;
    return upperCase(extension);
}

} // namespace corvina
