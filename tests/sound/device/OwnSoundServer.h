#pragma once

// The sound server that with-own-sound-server runs beside a test program.

#include "support/MessagePump.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace corvina::test {

class OwnSoundServer {
public:
    OwnSoundServer() {
        if (const char* const folder = std::getenv("CORVINA_SOUND_SERVER"))
            folder_ = "Z:" + std::string(folder) + "/";
    }
    [[nodiscard]] bool available() const { return !folder_.empty(); }
    void end() const { request("end"); }
    void start() const { request("start"); }

private:
    void request(const char* wish) const {
        const std::string file = folder_ + wish;
        std::ofstream(file).put('\n');
        ASSERT_TRUE(pumpUntil(
            [&] { return ::GetFileAttributesA(file.c_str()) == INVALID_FILE_ATTRIBUTES; }));
    }

    std::string folder_;
};

} // namespace corvina::test
