#include "runtime/RuntimeError.h"

#include <utility>

namespace corvina {

RuntimeError::RuntimeError(std::int32_t number, std::wstring text, std::wstring source)
    : number_(number), text_(std::move(text)), source_(std::move(source)) {}

void throwInvalidCall() {
    throw RuntimeError(5, L"Invalid procedure call or argument");
}

void throwOverflow() {
    throw RuntimeError(6, L"Overflow");
}

void throwSubscript() {
    throw RuntimeError(9, L"Subscript out of range");
}

void throwDivisionByZero() {
    throw RuntimeError(11, L"Division by zero");
}

void throwCannotLoadLibrary(const std::wstring& name) {
    throw RuntimeError(53, L"File not found: " + name);
}

void throwObjectNotSet() {
    throw RuntimeError(91, L"Object variable or With block variable not set");
}

} // namespace corvina
