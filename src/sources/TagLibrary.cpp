#include "sources/TagLibrary.h"

#include "stream/FileName.h"
#include "stream/LibrarySearch.h"

#include <memory>

namespace corvina {
namespace {

template <typename Function>
Function functionOf(const LibraryApi& api, HMODULE library, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(api.getProcAddress(library, name)));
}

} // namespace

bool TagLibrary::load() {
    if (library_)
        return true;
    LibraryHandle library = loadOptionalLibrary(libraries_, tagLibraryName);
    if (!library)
        return false;
    read_ = functionOf<ReadTagsFunction>(libraries_, library.get(), readTagsName);
    free_ = functionOf<FreeTagsFunction>(libraries_, library.get(), freeTagsName);
    if (!read_ || !free_)
        return false;
    library_ = std::move(library);
    return true;
}

FileTags TagLibrary::read(const std::wstring& path) {
    FileTags result;
    const FileName name = fileName(path);
    if (name.impossible || !load())
        return result;
    const std::unique_ptr<const TagsOfFile, FreeTagsFunction> found(read_(name.wide.c_str()),
                                                                    free_);
    if (!found)
        return result;
    for (std::size_t index = 0; index < found->tagCount; ++index)
        result.tags.push_back({found->tags[index].name, found->tags[index].text});
    const auto* const picture = static_cast<const std::uint8_t*>(found->picture);
    if (picture && found->pictureBytes <= largestPictureBytes)
        result.picture.assign(picture, picture + found->pictureBytes);
    return result;
}

} // namespace corvina
