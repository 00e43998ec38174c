#include "stream/RiffChunk.h"

#include "platform/AnsiText.h"
#include "platform/FileApi.h"

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>

namespace corvina {
namespace {

// A damaged file may be one long row of empty chunks.
constexpr int mostChunksBefore = 65536;

class WaveFile {
public:
    WaveFile(const MmioApi& api, std::string& path) noexcept
        : api_(api), handle_(api, api.open(path.data(), nullptr, MMIO_READ)) {
        if (!handle_ && path.size() >= longestName)
            handle_ = openLong(api, path);
    }

    explicit operator bool() const noexcept { return static_cast<bool>(handle_); }

    // Leaves the position at the data of the first chunk from here on that carries the given name,
    // or the given form type. A parent ends the search.
    [[nodiscard]] bool descend(MMCKINFO& chunk, const MMCKINFO* parent, UINT flags) const {
        return stepToChunk(chunk, flags) && api_.descend(handle_.get(), &chunk, parent, flags) == 0;
    }

    [[nodiscard]] LONG position() const { return api_.seek(handle_.get(), 0, SEEK_CUR); }

private:
    // What the platform promises to take, with the 0 at its end. A longer name it may refuse, but
    // it takes an open file instead, which it then closes itself.
    static constexpr std::size_t longestName = 128;

    [[nodiscard]] static MmioHandle openLong(const MmioApi& api, const std::string& path) noexcept {
        FileHandle file(systemFileApi,
                        ::CreateFileA(path.c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file)
            return {};
        MMIOINFO info{};
        info.fccIOProc = FOURCC_DOS;
        info.adwInfo[0] = static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(file.get()));
        MmioHandle handle(api, api.open(nullptr, &info, MMIO_READ));
        if (handle)
            static_cast<void>(file.release());
        return handle;
    }

    // The platform's own search follows each chunk's size wherever it points, also back to the same
    // chunk, for ever. So the way to the chunk is walked here first, forwards only.
    [[nodiscard]] bool stepToChunk(const MMCKINFO& wanted, UINT flags) const {
        struct Header {
            FOURCC id;
            DWORD size;
            FOURCC type;
        };
        std::int64_t at = position();
        for (int step = 0; step < mostChunksBefore; ++step) {
            Header header{};
            const LONG got =
                api_.read(handle_.get(), reinterpret_cast<HPSTR>(&header), LONG{sizeof header});
            if (at < 0 || got < LONG{offsetof(Header, type)})
                return false;
            const bool found = flags == MMIO_FINDRIFF
                                   ? header.id == FOURCC_RIFF && header.type == wanted.fccType
                                   : header.id == wanted.ckid;
            const std::int64_t next =
                found ? at
                      : at + std::int64_t{offsetof(Header, type)} + header.size + header.size % 2;
            if (next > std::numeric_limits<LONG>::max() ||
                api_.seek(handle_.get(), static_cast<LONG>(next), SEEK_SET) != next)
                return false;
            if (found)
                return true;
            at = next;
        }
        return false;
    }

    const MmioApi& api_;
    MmioHandle handle_;
};

// Of a name without a folder the platform takes the file beside the host's program, if there is
// one; everything else that opens it goes by the current folder.
std::string absolutePath(const std::string& path) {
    std::array<char, MAX_PATH> whole{};
    const DWORD length = ::GetFullPathNameA(path.c_str(), MAX_PATH, whole.data(), nullptr);
    return length > 0 && length < MAX_PATH ? std::string(whole.data(), length) : path;
}

} // namespace

RiffChunk findWaveChunk(const std::wstring& path, const char* name, const MmioApi& mmio) {
    const AnsiText ansi = toAnsi(path);
    if (ansi.lossy)
        return {};
    std::string whole = absolutePath(ansi.text);
    const WaveFile file(mmio, whole);
    if (!file)
        return {};
    MMCKINFO wave{};
    wave.fccType = mmio.stringToFourcc("WAVE", 0);
    MMCKINFO chunk{};
    chunk.ckid = mmio.stringToFourcc(name, 0);
    if (!file.descend(wave, nullptr, MMIO_FINDRIFF) || !file.descend(chunk, &wave, MMIO_FINDCHUNK))
        return {};
    const LONG offset = file.position();
    if (offset < 0)
        return {};
    return {.offset = offset, .size = static_cast<std::int32_t>(chunk.cksize)};
}

} // namespace corvina
