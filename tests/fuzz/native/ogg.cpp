// Ogg Vorbis through the calls that the source makes. Pages get their checksums after a change, for
// the library throws away those that have a wrong one.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ogg/ogg.h>
#include <vector>
#include <vorbis/vorbisfile.h>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

struct Memory {
    const std::uint8_t* data;
    std::int64_t size;
    std::int64_t at;
};

std::size_t readMemory(void* to, std::size_t size, std::size_t count, void* source) {
    auto& memory = *static_cast<Memory*>(source);
    const auto got = static_cast<std::size_t>(std::clamp<std::int64_t>(
        memory.size - memory.at, 0, static_cast<std::int64_t>(size * count)));
    std::memcpy(to, memory.data + memory.at, got);
    memory.at += static_cast<std::int64_t>(got);
    return got / size;
}

int seekMemory(void* source, ogg_int64_t offset, int whence) {
    auto& memory = *static_cast<Memory*>(source);
    const std::int64_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? memory.at : memory.size;
    if (from + offset < 0 || from + offset > memory.size)
        return -1;
    memory.at = from + offset;
    return 0;
}

long tellMemory(void* source) {
    return static_cast<long>(static_cast<Memory*>(source)->at);
}

void play(OggVorbis_File& file) {
    std::vector<char> buffer(8000);
    int section = 0;
    for (int reads = 0; reads < 30; ++reads)
        if (ov_read(&file, buffer.data(), 8000, 0, 2, 1, &section) == 0)
            break;
}

void correctPages(std::uint8_t* data, std::size_t size) {
    for (std::size_t at = 0; at + 27 <= size; ++at) {
        if (std::memcmp(data + at, "OggS", 4) != 0)
            continue;
        ogg_page page{};
        page.header = data + at;
        page.header_len = 27 + data[at + 26];
        if (at + static_cast<std::size_t>(page.header_len) > size)
            return;
        for (int segment = 0; segment < data[at + 26]; ++segment)
            page.body_len += data[at + 27 + static_cast<std::size_t>(segment)];
        page.body = data + at + page.header_len;
        if (at + static_cast<std::size_t>(page.header_len + page.body_len) > size)
            return;
        ogg_page_checksum_set(&page);
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned) {
    const std::size_t changed = LLVMFuzzerMutate(data, size, most);
    correctPages(data, changed);
    return changed;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Memory memory{data, static_cast<std::int64_t>(size), 0};
    OggVorbis_File file;
    const ov_callbacks callbacks{&readMemory, &seekMemory, nullptr, &tellMemory};
    if (ov_open_callbacks(&memory, &file, nullptr, 0, callbacks) != 0)
        return 0;
    const vorbis_info* const info = ov_info(&file, -1);
    if (info && info->rate >= 1 && info->channels <= 2) {
        const auto samples = static_cast<std::int32_t>(ov_pcm_total(&file, -1));
        const double seconds = static_cast<double>(samples) / static_cast<double>(info->rate);
        for (const char* const name : {"artist", "title", "tracknumber"})
            if (vorbis_comment* const comment = ov_comment(&file, -1))
                if (const char* const text = vorbis_comment_query(comment, name, 0))
                    (void)std::strlen(text);
        play(file);
        for (const double part : {0.0, 0.5, 0.99, 1.0}) {
            (void)ov_time_seek(&file, seconds * part);
            play(file);
        }
    }
    ov_clear(&file);
    return 0;
}
