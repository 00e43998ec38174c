// What the delivered files import. Windows resolves every import when it loads a file: a single
// function that it lacks, and nothing works at all.

#include "Windows7Functions.h"
#include "support/FileBytes.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace corvina {
namespace {

using namespace test;
using Functions = std::map<std::string, std::set<std::string>>; // by library, in lower case

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

// An image as it lies in its file.
class Image {
public:
    explicit Image(const std::wstring& path) : bytes_(fileBytes(path)) {
        const auto dos = at<IMAGE_DOS_HEADER>(0);
        headers_ = at<IMAGE_NT_HEADERS32>(static_cast<std::size_t>(dos.e_lfanew));
        sections_ = static_cast<std::size_t>(dos.e_lfanew) +
                    offsetof(IMAGE_NT_HEADERS32, OptionalHeader) +
                    headers_.FileHeader.SizeOfOptionalHeader;
    }

    [[nodiscard]] Functions imports() const {
        Functions found;
        const auto& directory = headers_.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        for (std::size_t entry = offset(directory.VirtualAddress);;
             entry += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
            const auto library = at<IMAGE_IMPORT_DESCRIPTOR>(entry);
            if (library.Name == 0)
                return found;
            auto& functions = found[lower(text(offset(library.Name)))];
            for (std::size_t name = offset(library.OriginalFirstThunk);; name += sizeof(DWORD)) {
                const auto address = at<DWORD>(name);
                if (address == 0)
                    break;
                functions.insert((address & IMAGE_ORDINAL_FLAG32) != 0
                                     ? "#" + std::to_string(address & 0xFFFF)
                                     : text(offset(address) + sizeof(WORD)));
            }
        }
    }

private:
    template <typename Record>
    [[nodiscard]] Record at(std::size_t place) const {
        Record record{};
        if (place + sizeof record > bytes_.size())
            throw std::runtime_error("no image");
        std::memcpy(&record, &bytes_[place], sizeof record);
        return record;
    }

    [[nodiscard]] std::string text(std::size_t place) const {
        std::string result;
        for (char letter = at<char>(place); letter != '\0'; letter = at<char>(++place))
            result += letter;
        return result;
    }

    // Where an address of the loaded image lies in the file.
    [[nodiscard]] std::size_t offset(DWORD address) const {
        for (WORD index = 0; index < headers_.FileHeader.NumberOfSections; ++index) {
            const auto section =
                at<IMAGE_SECTION_HEADER>(sections_ + index * sizeof(IMAGE_SECTION_HEADER));
            if (address >= section.VirtualAddress &&
                address - section.VirtualAddress < section.SizeOfRawData)
                return section.PointerToRawData + (address - section.VirtualAddress);
        }
        throw std::runtime_error("an address outside of the image");
    }

    Bytes bytes_;
    IMAGE_NT_HEADERS32 headers_{};
    std::size_t sections_ = 0;
};

Functions allowedFunctions() {
    Functions allowed;
    std::istringstream words(functionsOfWindows7);
    std::string library;
    for (std::string word; words >> word;)
        if (word.back() == ':')
            library = word.substr(0, word.size() - 1);
        else
            allowed[library].insert(word);
    return allowed;
}

class ImportedFunctions : public testing::TestWithParam<const wchar_t*> {};

TEST_P(ImportedFunctions, exist_on_windows_7) {
    const Functions allowed = allowedFunctions();
    const std::wstring folder = CORVINA_DIST L"/";
    const Functions imports = Image(folder + GetParam()).imports();
    EXPECT_TRUE(imports.contains("kernel32.dll"));
    for (const auto& [library, functions] : imports) {
        // The C runtime of every Windows, and the libraries that are delivered too.
        if (library == "msvcrt.dll" || library == "ogg.dll" || library == "vorbis.dll")
            continue;
        const auto known = allowed.find(library);
        ASSERT_NE(known, allowed.end()) << library;
        for (const std::string& function : functions)
            EXPECT_TRUE(known->second.contains(function)) << library << ' ' << function;
    }
}

INSTANTIATE_TEST_SUITE_P(Delivered, ImportedFunctions,
                         testing::Values(L"Corvina.ocx", L"corvina-play.exe", L"ogg.dll",
                                         L"vorbis.dll", L"vorbisfile.dll", L"libsndfile.dll",
                                         L"MACDll.dll", L"CorvinaTags.dll"));

} // namespace
} // namespace corvina
