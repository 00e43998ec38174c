#include "stream/CallStub.h"

#include "runtime/RuntimeError.h"

#include <algorithm>
#include <initializer_list>

namespace corvina {
namespace {

class StubWriter {
public:
    explicit StubWriter(std::span<const std::int32_t> arguments) {
        if (arguments.size() > CallStub::maxArguments)
            throwSubscript();
    }

    void bytes(std::initializer_list<std::uint8_t> values) {
        for (const std::uint8_t value : values)
            stub_.bytes.at(stub_.length++) = value;
    }

    void word(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes({static_cast<std::uint8_t>(value >> shift)});
    }

    // Last to first, so that the first ends nearest the top of the stack.
    void pushAll(std::span<const std::int32_t> arguments) {
        for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
            bytes({0x68}); // push imm32
            word(static_cast<std::uint32_t>(*argument));
        }
    }

    [[nodiscard]] std::uint32_t length() const noexcept {
        return static_cast<std::uint32_t>(stub_.length);
    }
    [[nodiscard]] const CallStub& stub() const noexcept { return stub_; }

private:
    CallStub stub_;
};

} // namespace

CallStub makeStdcallStub(std::uint32_t address, std::uint32_t target,
                         std::span<const std::int32_t> arguments) {
    StubWriter writer(arguments);
    writer.bytes({0x58});                   // pop eax: the return address
    writer.bytes({0x59, 0x59, 0x59, 0x59}); // pop ecx: the window-procedure arguments
    writer.bytes({0x50});                   // push eax
    writer.pushAll(arguments);
    writer.bytes({0xE8}); // call rel32
    writer.word(target - (address + writer.length() + 4));
    writer.bytes({0xC3}); // ret
    return writer.stub();
}

CallStub makeCdeclStub(std::uint32_t target, std::span<const std::int32_t> arguments) {
    StubWriter writer(arguments);
    writer.pushAll(arguments);
    writer.bytes({0xB8}); // mov eax, imm32
    writer.word(target);
    writer.bytes({0xFF, 0xD0}); // call eax

    // The instruction's operand is one signed byte. From 32 arguments on the count no longer fits:
    // one such byte would move the stack the other way, so a second addition takes the rest. With
    // 44 arguments this fills the buffer to its last byte.
    std::size_t pushed = arguments.size() * 4;
    constexpr std::size_t most = 124; // bytes, the largest multiple of 4 in a signed byte
    do {
        const std::size_t part = std::min(pushed, most);
        writer.bytes({0x83, 0xC4, static_cast<std::uint8_t>(part)}); // add esp, imm8
        pushed -= part;
    } while (pushed > 0);
    writer.bytes({0xC2, 0x10, 0x00}); // ret 16: the window-procedure arguments
    return writer.stub();
}

} // namespace corvina
