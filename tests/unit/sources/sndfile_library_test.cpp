// Every operation of libsndfile: the export that it calls and the words that it passes.

#include "sources/DecSND.h"
#include "support/StandIns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace corvina::test {
namespace {

using testing::ElementsAre;

std::int32_t __cdecl anyFunction(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) {
    StandIns::record("", {a, b, c, d});
    return 42;
}

class SndfileOperations : public testing::Test {
protected:
    // Calls an operation with the one export of that name present; the words that reach it.
    template <typename Operation>
    std::vector<std::int32_t> words(const char* name, std::size_t count, Operation operation) {
        StandIns libraries;
        libraries.add("libsndfile.dll", {{name, standIn(&anyFunction)}});
        SndfileLibrary library(StandIns::api());
        EXPECT_EQ(operation(library), 42) << name;
        std::vector<std::int32_t> result = libraries.calls.at(0).words;
        result.resize(count);
        return result;
    }
};

using Transfer = std::int32_t (*)(SndfileLibrary&, char*);

TEST_F(SndfileOperations, transfers_pass_handle_buffer_and_the_count_low_word_first) {
    constexpr std::int64_t count = 0x0000'0002'0000'0003;
    const std::pair<const char*, Transfer> transfers[] = {
        {"sf_read_raw", [](SndfileLibrary& l, char* b) { return l.readRaw(9, b, count); }},
        {"sf_write_raw", [](SndfileLibrary& l, char* b) { return l.writeRaw(9, b, count); }},
        {"sf_readf_short",
         [](SndfileLibrary& l, char* b) { return l.readFramesShort(9, b, count); }},
        {"sf_writef_short",
         [](SndfileLibrary& l, char* b) { return l.writeFramesShort(9, b, count); }},
        {"sf_readf_int", [](SndfileLibrary& l, char* b) { return l.readFramesInt(9, b, count); }},
        {"sf_writef_int", [](SndfileLibrary& l, char* b) { return l.writeFramesInt(9, b, count); }},
        {"sf_readf_float",
         [](SndfileLibrary& l, char* b) { return l.readFramesFloat(9, b, count); }},
        {"sf_writef_float",
         [](SndfileLibrary& l, char* b) { return l.writeFramesFloat(9, b, count); }},
        {"sf_readf_double",
         [](SndfileLibrary& l, char* b) { return l.readFramesDouble(9, b, count); }},
        {"sf_writef_double",
         [](SndfileLibrary& l, char* b) { return l.writeFramesDouble(9, b, count); }},
        {"sf_read_short", [](SndfileLibrary& l, char* b) { return l.readShort(9, b, count); }},
        {"sf_read_int", [](SndfileLibrary& l, char* b) { return l.readInt(9, b, count); }},
        {"sf_write_int", [](SndfileLibrary& l, char* b) { return l.writeInt(9, b, count); }},
        {"sf_read_float", [](SndfileLibrary& l, char* b) { return l.readFloat(9, b, count); }},
        {"sf_write_float", [](SndfileLibrary& l, char* b) { return l.writeFloat(9, b, count); }},
        {"sf_read_double", [](SndfileLibrary& l, char* b) { return l.readDouble(9, b, count); }},
        {"sf_write_double", [](SndfileLibrary& l, char* b) { return l.writeDouble(9, b, count); }},
    };
    char buffer[1];
    for (const auto& [name, transfer] : transfers)
        EXPECT_THAT(
            words(name, 4,
                  [&buffer, call = transfer](SndfileLibrary& l) { return call(l, buffer); }),
            ElementsAre(9, word(buffer), 3, 2))
            << name;
}

TEST_F(SndfileOperations, writing_16_bit_items_calls_the_reading_function) {
    char buffer[1]{};
    EXPECT_THAT(
        words("sf_read_short", 4, [&](SndfileLibrary& l) { return l.writeShort(9, buffer, 3); }),
        ElementsAre(9, word(buffer), 3, 0));
}

TEST_F(SndfileOperations, a_negative_offset_fills_the_high_word) {
    EXPECT_THAT(words("sf_seek", 4, [](SndfileLibrary& l) { return l.seek(9, -5, 1); }),
                ElementsAre(9, -5, -1, 1));
}

TEST_F(SndfileOperations, the_others_pass_the_arguments_of_their_prototypes) {
    const char text[] = "t";
    char data[1];
    SndfileInfo info{};
    EXPECT_THAT(words("sf_error", 1, [](SndfileLibrary& l) { return l.error(9); }), ElementsAre(9));
    EXPECT_THAT(words("sf_strerror", 1, [](SndfileLibrary& l) { return l.strerror(9); }),
                ElementsAre(9));
    EXPECT_THAT(words("sf_error_number", 1, [](SndfileLibrary& l) { return l.errorNumber(3); }),
                ElementsAre(3));
    EXPECT_THAT(
        words("sf_command", 4, [&](SndfileLibrary& l) { return l.command(9, 0x1001, data, 1); }),
        ElementsAre(9, 0x1001, word(data), 1));
    EXPECT_THAT(words("sf_format_check", 1, [&](SndfileLibrary& l) { return l.formatCheck(info); }),
                ElementsAre(word(&info)));
    EXPECT_THAT(
        words("sf_set_string", 3, [&](SndfileLibrary& l) { return l.setString(9, 1, text); }),
        ElementsAre(9, 1, word(text)));
    EXPECT_THAT(words("sf_get_string", 2, [](SndfileLibrary& l) { return l.getString(9, 1); }),
                ElementsAre(9, 1));
    EXPECT_THAT(words("sf_close", 1, [](SndfileLibrary& l) { return l.close(9); }), ElementsAre(9));
    EXPECT_THAT(words("sf_write_sync", 1, [](SndfileLibrary& l) { return l.writeSync(9); }),
                ElementsAre(9));
}

} // namespace
} // namespace corvina::test
