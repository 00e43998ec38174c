// The programs of examples/, run as a reader would run them: over the registered control, with a
// file that plays to its end, a file that is missing, and no file.

#include "Support.h"
#include "support/Media.h"

#include <gmock/gmock.h>

using namespace corvina::test;
using ::testing::HasSubstr;

namespace {

// From the folder in which test programs run.
const std::wstring examples = L"..\\..\\..\\examples\\";
const std::wstring built = L"..\\examples\\";

struct Outcome {
    int code = -1;
    std::string output;
};

Outcome outcomeOf(const std::wstring& program, const std::wstring& file) {
    Outcome outcome;
    outcome.code = run(program + L" " + file, &outcome.output);
    return outcome;
}

struct Script {
    const wchar_t* path;
    const char* format; // of a tagged file of one channel
};

class ScriptExample : public ::testing::TestWithParam<Script> {
protected:
    static Outcome with(const std::wstring& file) {
        return outcomeOf(L"cscript //nologo " + examples + GetParam().path, file);
    }
};

TEST_P(ScriptExample, shows_the_format_and_the_tags_of_a_file) {
    const Outcome outcome = with(mediaFile(L"title.ogg"));
    EXPECT_EQ(0, outcome.code);
    EXPECT_THAT(outcome.output, HasSubstr("44100 Hz, 16 bit, 1 channel(s), "));
    EXPECT_THAT(outcome.output, HasSubstr(GetParam().format));
    EXPECT_THAT(outcome.output, HasSubstr("Title: Alone"));
}

TEST_P(ScriptExample, says_that_a_file_is_missing) {
    const Outcome outcome = with(L"none.wav");
    EXPECT_EQ(1, outcome.code);
    EXPECT_THAT(outcome.output, HasSubstr("could not be opened, result 1"));
}

TEST_P(ScriptExample, explains_its_use_without_a_file) {
    const Outcome outcome = with(L"");
    EXPECT_EQ(2, outcome.code);
    EXPECT_THAT(outcome.output, HasSubstr("usage: cscript //nologo info."));
}

INSTANTIATE_TEST_SUITE_P(Vbscript, ScriptExample,
                         ::testing::Values(Script{L"vbscript\\info.vbs", "80 kbit/s, 0:00:03"}));
INSTANTIATE_TEST_SUITE_P(Jscript, ScriptExample,
                         ::testing::Values(Script{L"jscript\\info.js", "Ogg Vorbis, 0:00:03"}));

class ProgramExample : public ::testing::TestWithParam<const wchar_t*> {
protected:
    static Outcome with(const std::wstring& file) { return outcomeOf(built + GetParam(), file); }
};

TEST_P(ProgramExample, plays_a_file_to_its_end) {
    const Outcome outcome = with(mediaFile(L"short.wav"));
    EXPECT_EQ(0, outcome.code) << outcome.output;
    EXPECT_EQ("done\r\n", outcome.output);
}

TEST_P(ProgramExample, says_that_a_file_is_missing) {
    const Outcome outcome = with(L"none.wav");
    EXPECT_EQ(1, outcome.code);
    EXPECT_EQ("could not be played, result 1\r\n", outcome.output);
}

TEST_P(ProgramExample, explains_its_use_without_a_file) {
    const Outcome outcome = with(L"");
    EXPECT_EQ(2, outcome.code);
    EXPECT_THAT(outcome.output, HasSubstr("usage: corvina-"));
}

INSTANTIATE_TEST_SUITE_P(Cpp, ProgramExample, ::testing::Values(L"cpp\\corvina-example.exe"));
INSTANTIATE_TEST_SUITE_P(Atl, ProgramExample, ::testing::Values(L"atl\\corvina-atl-example.exe"));

} // namespace
