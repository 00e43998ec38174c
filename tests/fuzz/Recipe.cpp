#include "fuzz/Recipe.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace corvina::fuzz {
namespace {

constexpr std::size_t worthCounting = 4; // equal bytes

int digit(char character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    throw std::runtime_error("no hexadecimal digit");
}

} // namespace

std::string recipeOf(const Bytes& input) {
    std::string text;
    bool apart = false; // the next byte begins a word
    for (std::size_t at = 0; at < input.size();) {
        std::size_t same = 1;
        while (at + same < input.size() && input[at + same] == input[at])
            ++same;
        const bool counted = same >= worthCounting;
        if (!text.empty() && (counted || apart))
            text += ' ';
        text += "0123456789abcdef"[input[at] >> 4];
        text += "0123456789abcdef"[input[at] & 15];
        if (counted)
            text += '*' + std::to_string(same);
        apart = counted;
        at += counted ? same : 1;
    }
    return text;
}

Bytes fromRecipe(const std::string& text) {
    Bytes bytes;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t star = word.find('*');
        const std::string digits = word.substr(0, star);
        if (digits.size() % 2 != 0)
            throw std::runtime_error("half a byte");
        for (std::size_t at = 0; at < digits.size(); at += 2)
            bytes.push_back(
                static_cast<std::uint8_t>(digit(digits[at]) << 4 | digit(digits[at + 1])));
        if (star != std::string::npos && !bytes.empty())
            bytes.insert(bytes.end(), std::stoul(word.substr(star + 1)) - 1, Bytes(bytes).back());
    }
    return bytes;
}

std::vector<Bytes> readCorpus(const std::string& path) {
    std::vector<Bytes> inputs;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line.front() != '#')
            inputs.push_back(fromRecipe(line));
    }
    return inputs;
}

void writeCorpus(const std::string& path, const std::vector<Bytes>& inputs) {
    std::ofstream file(path, std::ios::binary);
    for (const Bytes& input : inputs)
        file << recipeOf(input) << '\n';
}

} // namespace corvina::fuzz
