#include "Options.h"

#include "Unicode.h"
#include "UnixPaths.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
#include <utility>

namespace corvina::app {

namespace {

constexpr const char* keyHelp =
    "Keys on the terminal:\n"
    "  space         pause, resume\n"
    "  left, right   seek 5 seconds back, forward\n"
    "  n, p          next, previous file\n"
    "  h, r, l       shuffle, repeat the list, repeat the file\n"
    "  up, down      louder, quieter (or + and -)\n"
    "  m             mute\n"
    "  s             stop; without a window, also quit\n"
    "  q             stop and quit\n\n"
    "The exit code is the control's result for the first file that could "
    "not be played, or 0.\n";

// What the parser fills. Paths are still as the user wrote them.
struct Given {
    Options options;
    std::vector<std::string> files;
    std::string defaultFile;
    std::string infoFile;
    std::string pictureFile;
};

void addOptions(CLI::App& parser, Given& given) {
    auto& [options, files, defaultFile, infoFile, pictureFile] = given;
    parser.set_version_flag("--version", "corvina-play " CORVINA_VERSION);
    parser
        .add_option("files", files,
                    "Files, folders and lists (M3U, PLS, CUE) to play, in this order")
        ->option_text("FILE...");
    parser
        .add_option("--device", options.device,
                    "Number of the output device, as listed by --devices")
        ->option_text("N")
        ->check(CLI::Range(-1L, 0x7fffffffL));
    parser.add_flag("--devices", options.listDevices, "List the output devices");
    parser.add_option("--info", infoFile, "Show the format and tags of a file")
        ->option_text("FILE");
    parser.add_option("--start", options.startSeconds, "Start the first file at this position")
        ->option_text("SECONDS")
        ->check(CLI::Range(0L, 0x7fffffffL));
    parser.add_flag("--console", options.consoleOnly,
                    "Play on the terminal only, without a window");
    parser.add_option("--style", options.style, "What the window's graph shows")
        ->option_text("spectrum|waveform")
        ->transform(CLI::CheckedTransformer(std::map<std::string, AudioGraphStyle>{
            {"waveform", AMPLITUDE_STYLE}, {"spectrum", FREQUENCY_STYLE}}));
    parser
        .add_option("--picture", pictureFile,
                    "Save a picture of the window during playback (PNG), and quit at the end")
        ->option_text("FILE")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    // For scripts that have a file to play if the user names none.
    parser.add_option("--default-file", defaultFile)->group("");
    parser.add_flag("--verbose", options.verbose, "Print every error event of the control");
}

} // namespace

ParsedOptions parseOptions(const std::vector<std::wstring>& arguments, PathStyle paths) {
    Given given;
    auto& [options, files, defaultFile, infoFile, pictureFile] = given;
    CLI::App parser(
        "Plays audio files through the Corvina controls, in a window or on the terminal.",
        "corvina-play");
    parser.footer(keyHelp);
    // A slash begins an option on Windows, but a file on Unix.
    parser.allow_windows_style_options(paths == PathStyle::windows);
    addOptions(parser, given);

    // The parser takes its arguments from the back.
    std::vector<std::string> utf8(arguments.size());
    std::transform(arguments.rbegin(), arguments.rend(), utf8.begin(), toUtf8);
    try {
        parser.parse(std::move(utf8));
        if (files.empty() && !defaultFile.empty() && !options.listDevices && infoFile.empty())
            files.push_back(defaultFile);
        if (files.empty() && options.consoleOnly)
            throw CLI::RequiredError("A file to play");
    } catch (const CLI::ParseError& error) {
        std::ostringstream text;
        const int code = parser.exit(error, text, text);
        return {std::nullopt, fromUtf8(text.str()), code};
    }
    const auto toPath = [paths](const std::string& name) {
        return paths == PathStyle::unix ? windowsPath(fromUtf8(name)) : fromUtf8(name);
    };
    std::transform(files.begin(), files.end(), std::back_inserter(options.files), toPath);
    options.infoFile = toPath(infoFile);
    options.pictureFile = toPath(pictureFile);
    return {std::move(options), {}, 0};
}

} // namespace corvina::app
