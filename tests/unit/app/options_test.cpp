#include "Options.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace corvina::app {
namespace {

TEST(CommandLine, of_files_alone_plays_them_from_the_start_and_names_no_device) {
    const ParsedOptions parsed = parseOptions({L"one.wav", L"C:\\two three.wav"});
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(parsed.options->files, (std::vector<std::wstring>{L"one.wav", L"C:\\two three.wav"}));
    EXPECT_FALSE(parsed.options->device) << "the one remembered";
    EXPECT_EQ(parsed.options->startSeconds, 0);
    EXPECT_FALSE(parsed.options->consoleOnly);
}

TEST(CommandLine, keeps_characters_of_any_script) {
    const std::wstring name = L"\x4E2D\x6587 \x00FC\xD83C\xDFB5.wav";
    const ParsedOptions parsed = parseOptions({name});
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(parsed.options->files, std::vector<std::wstring>{name});
}

TEST(CommandLine, takes_minus_one_as_the_number_of_a_device) {
    const ParsedOptions parsed = parseOptions({L"--device", L"-1", L"one.wav"});
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(parsed.options->device, -1);
}

TEST(CommandLine, takes_what_stands_behind_two_dashes_as_files) {
    const ParsedOptions parsed = parseOptions({L"--", L"--info.wav"});
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(parsed.options->files, std::vector<std::wstring>{L"--info.wav"});
}

TEST(CommandLine, refuses_a_time_before_the_beginning) {
    const ParsedOptions parsed = parseOptions({L"--start", L"-3", L"one.wav"});
    EXPECT_FALSE(parsed.options);
    EXPECT_NE(parsed.exitCode, 0);
    EXPECT_NE(parsed.text.find(L"--start"), std::wstring::npos);
}

TEST(CommandLine, refuses_an_option_it_does_not_know) {
    const ParsedOptions parsed = parseOptions({L"--bogus"});
    EXPECT_FALSE(parsed.options);
    EXPECT_NE(parsed.exitCode, 0);
}

TEST(CommandLine, needs_a_file_on_the_terminal_alone) {
    EXPECT_FALSE(parseOptions({L"--console"}).options);
    EXPECT_TRUE(parseOptions({}).options);
}

TEST(CommandLine, ends_with_success_for_help_and_version) {
    const ParsedOptions help = parseOptions({L"--help"});
    EXPECT_FALSE(help.options);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.text.find(L"--device"), std::wstring::npos);
    const ParsedOptions version = parseOptions({L"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_NE(version.text.find(L"corvina-play"), std::wstring::npos);
}

TEST(CommandLine, names_the_styles_of_the_graph) {
    EXPECT_EQ(parseOptions({L"--style", L"waveform"}).options->style, AMPLITUDE_STYLE);
    EXPECT_EQ(parseOptions({L"--style", L"spectrum"}).options->style, FREQUENCY_STYLE);
    EXPECT_FALSE(parseOptions({L"--style", L"cube"}).options);
}

TEST(CommandLine, names_files_as_unix_does_for_a_user_of_wine) {
    const ParsedOptions parsed =
        parseOptions({L"--picture", L"/tmp/a b.png", L"--info=/music/one.wav", L"/music/two.wav",
                      L"near/three.wav", L"D:\\Track01.cda"},
                     PathStyle::unix);
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(parsed.options->pictureFile, L"Z:\\tmp\\a b.png");
    EXPECT_EQ(parsed.options->infoFile, L"Z:\\music\\one.wav");
    EXPECT_EQ(
        parsed.options->files,
        (std::vector<std::wstring>{L"Z:\\music\\two.wav", L"near/three.wav", L"D:\\Track01.cda"}));
}

TEST(CommandLine, leaves_a_slash_to_windows_elsewhere) {
    const ParsedOptions parsed = parseOptions({L"--", L"/music/one.wav"});
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(parsed.options->files, std::vector<std::wstring>{L"/music/one.wav"});
}

TEST(CommandLine, plays_the_default_file_if_it_names_nothing_to_do) {
    const auto files = [](std::vector<std::wstring> arguments) {
        arguments.insert(arguments.begin(), L"--default-file=tune.wav");
        return parseOptions(arguments).options->files;
    };
    const std::vector<std::wstring> none, tune{L"tune.wav"}, own{L"own.wav"};
    EXPECT_EQ(files({}), tune);
    EXPECT_EQ(files({L"--console"}), tune);
    EXPECT_EQ(files({L"own.wav"}), own);
    EXPECT_EQ(files({L"--devices"}), none);
    EXPECT_EQ(files({L"--info=own.wav"}), none);
}

TEST(CommandLine, takes_the_last_of_several_pictures) {
    EXPECT_EQ(parseOptions({L"--picture=a.png", L"--picture", L"b.png"}).options->pictureFile,
              L"b.png");
}

} // namespace
} // namespace corvina::app
