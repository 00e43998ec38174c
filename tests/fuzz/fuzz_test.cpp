// Coverage-guided fuzzing of everything that reads what others wrote.
//
//   fuzz_test.exe                                  two seconds of each target, as tests
//   fuzz_test.exe --target=NAME [--seconds=N] [--runs=N] [--seed=N] [--corpus=FILE] [--keep=FILE]
//                 [--places=FILE]
//   fuzz_test.exe --target=NAME --input=RECIPE     one input
//
// tools/fuzz is the way to call it. --corpus reads inputs to begin with, --keep writes the smallest
// corpus that reaches the same, --places the addresses that were reached.

#include "fuzz/Coverage.h"
#include "fuzz/Fuzzer.h"
#include "fuzz/Recipe.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

namespace corvina::fuzz {
namespace {

class Fuzzing : public testing::TestWithParam<const FuzzTarget*> {};

TEST_P(Fuzzing, the_kept_inputs_and_two_seconds_of_new_ones_are_survived) {
    const FuzzTarget& target = *GetParam();
    FuzzOptions options;
    options.corpus = readCorpus(CORVINA_FUZZ_CORPUS "/" + target.name + ".txt");
    ASSERT_FALSE(options.corpus.empty()) << "no inputs were kept for " << target.name;
    const FuzzReport report = fuzz::fuzz(target, options);
    EXPECT_GT(report.runs, 100u);
    // Without the hooks nothing would be reached.
    EXPECT_GT(report.places, 10u);
    std::printf("%llu runs, %zu places reached, %zu inputs\n", report.runs, report.places,
                report.corpus.size());
}

INSTANTIATE_TEST_SUITE_P(Targets, Fuzzing, testing::ValuesIn(FuzzTarget::all()),
                         [](const auto& target) { return target.param->name; });

TEST(Recipe, a_recipe_gives_the_input_again) {
    for (const Bytes& input : {Bytes{}, Bytes{1}, Bytes{1, 2, 2, 2, 3}, Bytes(1000, 7),
                               Bytes{0, 0, 0, 0, 0, 9, 9, 9, 9}})
        EXPECT_EQ(fromRecipe(recipeOf(input)), input) << recipeOf(input);
    EXPECT_EQ(recipeOf({1, 2, 2, 2, 2, 3}), "01 02*4 03");
}

struct Arguments {
    const FuzzTarget* target = nullptr;
    FuzzOptions options;
    std::string keep;
    std::string places;
    const char* input = nullptr;
};

// The rest of an argument that begins so; null for another one.
const char* valueOf(const char* argument, const char* name) {
    const std::size_t length = std::strlen(name);
    return std::strncmp(argument, name, length) == 0 ? argument + length : nullptr;
}

Arguments parsed(int argc, char** argv) {
    Arguments arguments;
    for (int index = 1; index < argc; ++index) {
        const char* value = nullptr;
        if ((value = valueOf(argv[index], "--target=")))
            arguments.target = FuzzTarget::find(value);
        else if ((value = valueOf(argv[index], "--seconds=")))
            arguments.options.seconds = std::atof(value);
        else if ((value = valueOf(argv[index], "--runs=")))
            arguments.options.runs = std::strtoull(value, nullptr, 10);
        else if ((value = valueOf(argv[index], "--seed=")))
            arguments.options.seed = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
        else if ((value = valueOf(argv[index], "--corpus=")))
            arguments.options.corpus = readCorpus(value);
        else if ((value = valueOf(argv[index], "--keep=")))
            arguments.keep = value;
        else if ((value = valueOf(argv[index], "--places=")))
            arguments.places = value;
        else if ((value = valueOf(argv[index], "--input=")))
            arguments.input = value;
    }
    return arguments;
}

void writePlaces(const std::string& path) {
    if (std::FILE* const file = std::fopen(path.c_str(), "w")) {
        for (const std::uintptr_t address : coverage::addresses())
            std::fprintf(file, "%zx\n", static_cast<std::size_t>(address));
        std::fclose(file);
    }
}

int fuzzOne(const Arguments& arguments) {
    watchForCrashes();
    if (arguments.input) {
        runOnce(*arguments.target, fromRecipe(arguments.input));
        std::puts("survived");
        return 0;
    }
    const auto start = std::chrono::steady_clock::now();
    const FuzzReport report = fuzz::fuzz(*arguments.target, arguments.options);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    if (!arguments.places.empty())
        writePlaces(arguments.places);
    std::printf("%s: %llu runs in %.1f s, %zu places, %zu features, %zu inputs",
                arguments.target->name.c_str(), report.runs, took.count(), report.places,
                report.features, report.corpus.size());
    if (!arguments.keep.empty()) {
        const std::vector<Bytes> kept = minimised(*arguments.target, report.corpus);
        writeCorpus(arguments.keep, kept);
        std::printf(", %zu kept", kept.size());
    }
    std::puts("");
    return 0;
}

} // namespace
} // namespace corvina::fuzz

int main(int argc, char** argv) {
    using namespace corvina::fuzz;
    const Arguments arguments = parsed(argc, argv);
    if (arguments.target)
        return fuzzOne(arguments);
    for (int index = 1; index < argc; ++index)
        if (valueOf(argv[index], "--target=")) {
            std::fputs("no such target; there are:", stderr);
            for (const FuzzTarget* target : FuzzTarget::all())
                std::fprintf(stderr, " %s", target->name.c_str());
            std::fputs("\n", stderr);
            return 2;
        }
    testing::InitGoogleTest(&argc, argv);
    watchForCrashes();
    return RUN_ALL_TESTS();
}
