// libsndfile through the calls that the source makes.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sndfile.h>
#include <vector>

namespace {

struct Memory {
    const std::uint8_t* data;
    sf_count_t size;
    sf_count_t at;
};

sf_count_t length(void* source) {
    return static_cast<Memory*>(source)->size;
}

sf_count_t seekMemory(sf_count_t offset, int whence, void* source) {
    auto& memory = *static_cast<Memory*>(source);
    const sf_count_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? memory.at : memory.size;
    if (from + offset >= 0)
        memory.at = from + offset;
    return memory.at;
}

sf_count_t readMemory(void* to, sf_count_t count, void* source) {
    auto& memory = *static_cast<Memory*>(source);
    const sf_count_t got = std::clamp<sf_count_t>(memory.size - memory.at, 0, count);
    std::memcpy(to, memory.data + std::min(memory.at, memory.size), static_cast<std::size_t>(got));
    memory.at += got;
    return got;
}

sf_count_t tell(void* source) {
    return static_cast<Memory*>(source)->at;
}

void play(SNDFILE* file, int channels) {
    std::vector<short> buffer(4000);
    const sf_count_t items = channels > 0 ? 4000 / channels * channels : 4000;
    for (int reads = 0; reads < 30; ++reads)
        if (sf_read_short(file, buffer.data(), items) <= 0)
            break;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Memory memory{data, static_cast<sf_count_t>(size), 0};
    SF_VIRTUAL_IO io{&length, &seekMemory, &readMemory, nullptr, &tell};
    SF_INFO info{};
    SNDFILE* const file = sf_open_virtual(&io, SFM_READ, &info, &memory);
    if (!file)
        return 0;
    for (int name = SF_STR_FIRST; name <= SF_STR_LAST; ++name)
        if (const char* const text = sf_get_string(file, name))
            (void)std::strlen(text);
    play(file, info.channels);
    for (const sf_count_t part : {0, 2, 4}) {
        (void)sf_seek(file, info.frames * part / 4, SEEK_SET);
        play(file, info.channels);
    }
    sf_close(file);
    return 0;
}
