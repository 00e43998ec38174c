#pragma once

// Inputs as text, so that a corpus can be read and compared: a line for each, in hexadecimal
// digits, "00*44" for 44 such bytes. Empty lines and lines that begin with # are passed over.

#include "fuzz/FuzzTarget.h"

#include <string>
#include <vector>

namespace corvina::fuzz {

[[nodiscard]] std::string recipeOf(const Bytes& input);
// Throws std::runtime_error for a text that is no recipe.
[[nodiscard]] Bytes fromRecipe(const std::string& text);

// Nothing if there is no such file.
[[nodiscard]] std::vector<Bytes> readCorpus(const std::string& path);
void writeCorpus(const std::string& path, const std::vector<Bytes>& inputs);

} // namespace corvina::fuzz
