#pragma once

// What the command line asks for.

#include <Corvina.h>

#include <optional>
#include <string>
#include <vector>

namespace corvina::app {

struct Options {
    std::vector<std::wstring> files;
    std::wstring infoFile; // describe this file first
    bool listDevices = false;
    bool consoleOnly = false; // the terminal alone, no window
    std::wstring pictureFile; // save a picture of the window here, and leave when all is played
    std::optional<AudioGraphStyle> style; // what the graph shows; the one remembered if not said
    bool verbose = false;                 // also the error event with which every playback ends
    std::optional<long> device; // 0-based; -1 is the wave mapper; the one remembered if not said
    long startSeconds = 0;      // at which the first file begins
};

// The result of reading a command line: options to act on, or a text that ends the program.
struct ParsedOptions {
    std::optional<Options> options;
    std::wstring text; // help, version, or an error message
    int exitCode = 0;  // 0 for help and version
};

enum class PathStyle { windows, unix };

// arguments: the command line without the program's name. With PathStyle::unix a name that begins
// with a slash is a file of Unix (UnixPaths.h).
[[nodiscard]] ParsedOptions parseOptions(const std::vector<std::wstring>& arguments,
                                         PathStyle paths = PathStyle::windows);

} // namespace corvina::app
