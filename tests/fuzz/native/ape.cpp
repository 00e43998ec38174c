// The APE adapter and the decoder below it.

#include "ApeDecoder.h"

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

void play(ApeDecoder& decoder) {
    const int align = decoder.blockAlign();
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(1000 * align));
    for (int reads = 0; reads < 40; ++reads) {
        const std::int64_t got = decoder.read(buffer.data(), 1000);
        require(got >= 0 && got <= 1000);
        if (got == 0)
            return;
    }
}

void use(const std::string& path) {
    ApeDecoder decoder(path);
    (void)decoder.durationMs();
    (void)decoder.averageKilobits();
    require(decoder.blockAlign() > 0);
    play(decoder);
    const std::int64_t total = decoder.totalBlocks();
    for (const std::int64_t block : {total / 2, total - 1, std::int64_t{0}, total}) {
        (void)decoder.seek(block);
        (void)decoder.positionMs();
        play(decoder);
    }
    require(!decoder.seek(-1) && !decoder.seek(total + 1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int file = [] {
        av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(64u << 20);
        return memfd_create("input", 0);
    }();
    require(ftruncate(file, 0) == 0 &&
            pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
    try {
        use("/proc/self/fd/" + std::to_string(file));
    } catch (const std::exception&) { // no APE file
    }
    return 0;
}
