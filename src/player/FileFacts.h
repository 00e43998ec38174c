#pragma once

// What a host may ask about the opened file beside its sound: its tags, its cover and its format in
// words. Each is read when it is first asked for, and kept until another file is asked about.

#include "platform/FileApi.h"
#include "player/CoverPicture.h"
#include "sources/TagLibrary.h"

#include <cstdint>
#include <optional>
#include <string>

namespace corvina {

class FileFacts {
public:
    // The tables must outlive the object.
    FileFacts(const LibraryApi& libraries, const FileApi& files) noexcept
        : library_(libraries), files_(files) {}

    // The file that all of these are about; an empty name for none, which has nothing.
    void setFile(const std::wstring& file);
    // Another file may have taken the name.
    void forget() noexcept;

    [[nodiscard]] std::wstring formatName();
    // name: without regard to case. Several values of one name are joined by "; ". Empty if the
    // file has no such tag.
    [[nodiscard]] std::wstring tagText(const std::wstring& name);
    [[nodiscard]] std::int32_t tagCount();
    // index: 1 to tagCount(), otherwise error 380. The names are in alphabetical order.
    [[nodiscard]] std::wstring tagName(std::int32_t index);
    // The cover, always the same object; empty without one.
    [[nodiscard]] ComPtr<IPictureDisp> picture();

private:
    [[nodiscard]] FileTags& tags();

    TagLibrary library_;
    const FileApi& files_;
    std::wstring file_;
    std::optional<std::wstring> formatName_;
    std::optional<FileTags> tags_;
    std::optional<ComPtr<IPictureDisp>> picture_;
};

} // namespace corvina
