#include "player/FileFacts.h"

#include "platform/ErrorBoxes.h"
#include "player/FormatName.h"
#include "player/PlaybackSettings.h"
#include "player/SourceList.h"
#include "runtime/RuntimeError.h"
#include "runtime/Text.h"

namespace corvina {

void FileFacts::setFile(const std::wstring& file) {
    if (file == file_)
        return;
    forget();
    file_ = file;
}

void FileFacts::forget() noexcept {
    file_.clear();
    formatName_.reset();
    tags_.reset();
    picture_.reset();
}

std::wstring FileFacts::formatName() {
    if (!formatName_) {
        const NoErrorBoxes quiet;
        formatName_ = file_.empty() ? std::wstring() : corvina::formatName(file_, files_);
    }
    return *formatName_;
}

FileTags& FileFacts::tags() {
    if (!tags_) {
        const NoErrorBoxes quiet;
        // A track file of a CD describes a place on the disc.
        const bool mayHaveTags = !file_.empty() && lowerCase(fileExtension(file_)) != L"cda";
        tags_ = mayHaveTags ? library_.read(file_) : FileTags();
    }
    return *tags_;
}

std::wstring FileFacts::tagText(const std::wstring& name) {
    const std::wstring wanted = upperCase(name);
    for (const FileTag& tag : tags().tags)
        if (upperCase(tag.name) == wanted)
            return tag.text;
    return {};
}

std::int32_t FileFacts::tagCount() {
    return static_cast<std::int32_t>(tags().tags.size());
}

std::wstring FileFacts::tagName(std::int32_t index) {
    const std::int32_t count = tagCount();
    if (count == 0)
        throwInvalidValue(L"Index must be that of a tag, and there are no tags");
    requireRange(L"Index", index, 1, count);
    return tags().tags[static_cast<std::size_t>(index - 1)].name;
}

ComPtr<IPictureDisp> FileFacts::picture() {
    if (!picture_) {
        picture_ = makePicture(tags().picture);
        // The content is not needed any more.
        tags().picture = {};
    }
    return *picture_;
}

} // namespace corvina
