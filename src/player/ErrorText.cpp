#include "player/ErrorText.h"

namespace corvina {

std::wstring errorText(std::int32_t number) {
    switch (number) {
    case PlayerError::cannotOpen:
        return L"Error opening file";
    case PlayerError::notAudio:
        return L"Not audio file";
    case PlayerError::alreadyPlaying:
        return L"Control already playing, use the PlayStop function to stop playing.";
    case PlayerError::alreadyRecording:
        return L"Control already recording, use the RecordStop function to stop recording.";
    default:
        return {};
    }
}

} // namespace corvina
