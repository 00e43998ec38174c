#pragma once

// Real files of many encoders: those with which the decoders' packages test themselves, as they
// come with the sources that the codecs are built from. What is expected of a file is what the
// package's own tests expect of it.

#include <iosfwd>
#include <string>
#include <vector>

namespace corvina::test {

enum class Whole { yes, cutOff };

struct RealFile {
    const wchar_t* path; // below the folder of a package's test data
    const char* format;  // FormatName
    // By the package's tests, where these say it; the others are 0 or null and not compared.
    long milliseconds = 0;
    long channels = 0;
    long rate = 0;
    const wchar_t* title = nullptr;
    const wchar_t* artist = nullptr;
    // Of some files the package has only the beginning: less is heard, and the length is compared
    // if the file itself says it.
    Whole whole = Whole::yes;
    int since = 1; // the first version of the tag library that has it
    // What an encoder put before the sound, in milliseconds: newer systems' readers leave it out.
    long leadIn = 0;
    const wchar_t* package = L"taglib\\tests\\data\\";

    [[nodiscard]] std::wstring file() const;
};
std::ostream& operator<<(std::ostream& out, const RealFile& file);

// All files of sound that can be played, whether this version of their package has them or not.
[[nodiscard]] const std::vector<RealFile>& playableFiles();

// The version of the tag library's package, such as "1.13-2"; empty if it is not unpacked.
[[nodiscard]] std::string tagLibraryVersion();
// The names of all files in its test data, and the path of one of them.
[[nodiscard]] std::vector<std::wstring> tagLibraryFiles();
[[nodiscard]] std::wstring tagLibraryFile(const std::wstring& name);

} // namespace corvina::test
