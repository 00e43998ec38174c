#include "sources/SndfileLibrary.h"

namespace corvina {
namespace {

std::int32_t low(std::int64_t value) noexcept {
    return static_cast<std::int32_t>(value);
}
std::int32_t high(std::int64_t value) noexcept {
    return static_cast<std::int32_t>(value >> 32);
}

} // namespace

SndfileLibrary::SndfileLibrary(const LibraryApi& api) : library_(api) {
    library_.LoadDLL(L"libsndfile.dll");
    library_.IsCDECL(true);
}

std::int32_t SndfileLibrary::open(const std::string& ansiPath, std::int32_t mode,
                                  SndfileInfo& info) {
    return library_.CallFunc("sf_open", ansiPath.c_str(), mode, &info);
}

std::int32_t SndfileLibrary::openWide(const std::wstring& path, std::int32_t mode,
                                      SndfileInfo& info) {
    return library_.CallFunc("sf_wchar_open", path.c_str(), mode, &info);
}

std::int32_t SndfileLibrary::error(std::int32_t file) {
    return library_.CallFunc("sf_error", file);
}

std::int32_t SndfileLibrary::strerror(std::int32_t file) {
    return library_.CallFunc("sf_strerror", file);
}

std::int32_t SndfileLibrary::errorNumber(std::int32_t number) {
    return library_.CallFunc("sf_error_number", number);
}

std::int32_t SndfileLibrary::command(std::int32_t file, std::int32_t command, void* data,
                                     std::int32_t size) {
    return library_.CallFunc("sf_command", file, command, data, size);
}

std::int32_t SndfileLibrary::formatCheck(const SndfileInfo& info) {
    return library_.CallFunc("sf_format_check", &info);
}

std::int32_t SndfileLibrary::seek(std::int32_t file, std::int64_t offset, std::int32_t whence) {
    return library_.CallFunc("sf_seek", file, low(offset), high(offset), whence);
}

std::int32_t SndfileLibrary::setString(std::int32_t file, std::int32_t type, const char* text) {
    return library_.CallFunc("sf_set_string", file, type, text);
}

std::int32_t SndfileLibrary::getString(std::int32_t file, std::int32_t type) {
    return library_.CallFunc("sf_get_string", file, type);
}

std::int32_t SndfileLibrary::readRaw(std::int32_t file, void* to, std::int64_t bytes) {
    return transfer("sf_read_raw", file, to, bytes);
}

std::int32_t SndfileLibrary::writeRaw(std::int32_t file, const void* from, std::int64_t bytes) {
    return transfer("sf_write_raw", file, from, bytes);
}

std::int32_t SndfileLibrary::readFramesShort(std::int32_t file, void* to, std::int64_t frames) {
    return transfer("sf_readf_short", file, to, frames);
}

std::int32_t SndfileLibrary::writeFramesShort(std::int32_t file, const void* from,
                                              std::int64_t frames) {
    return transfer("sf_writef_short", file, from, frames);
}

std::int32_t SndfileLibrary::readFramesInt(std::int32_t file, void* to, std::int64_t frames) {
    return transfer("sf_readf_int", file, to, frames);
}

std::int32_t SndfileLibrary::writeFramesInt(std::int32_t file, const void* from,
                                            std::int64_t frames) {
    return transfer("sf_writef_int", file, from, frames);
}

std::int32_t SndfileLibrary::readFramesFloat(std::int32_t file, void* to, std::int64_t frames) {
    return transfer("sf_readf_float", file, to, frames);
}

std::int32_t SndfileLibrary::writeFramesFloat(std::int32_t file, const void* from,
                                              std::int64_t frames) {
    return transfer("sf_writef_float", file, from, frames);
}

std::int32_t SndfileLibrary::readFramesDouble(std::int32_t file, void* to, std::int64_t frames) {
    return transfer("sf_readf_double", file, to, frames);
}

std::int32_t SndfileLibrary::writeFramesDouble(std::int32_t file, const void* from,
                                               std::int64_t frames) {
    return transfer("sf_writef_double", file, from, frames);
}

std::int32_t SndfileLibrary::readShort(std::int32_t file, void* to, std::int64_t items) {
    return transfer("sf_read_short", file, to, items);
}

std::int32_t SndfileLibrary::writeShort(std::int32_t file, void* from, std::int64_t items) {
    return transfer("sf_read_short", file, from, items);
}

std::int32_t SndfileLibrary::readInt(std::int32_t file, void* to, std::int64_t items) {
    return transfer("sf_read_int", file, to, items);
}

std::int32_t SndfileLibrary::writeInt(std::int32_t file, const void* from, std::int64_t items) {
    return transfer("sf_write_int", file, from, items);
}

std::int32_t SndfileLibrary::readFloat(std::int32_t file, void* to, std::int64_t items) {
    return transfer("sf_read_float", file, to, items);
}

std::int32_t SndfileLibrary::writeFloat(std::int32_t file, const void* from, std::int64_t items) {
    return transfer("sf_write_float", file, from, items);
}

std::int32_t SndfileLibrary::readDouble(std::int32_t file, void* to, std::int64_t items) {
    return transfer("sf_read_double", file, to, items);
}

std::int32_t SndfileLibrary::writeDouble(std::int32_t file, const void* from, std::int64_t items) {
    return transfer("sf_write_double", file, from, items);
}

std::int32_t SndfileLibrary::close(std::int32_t file) {
    return library_.CallFunc("sf_close", file);
}

std::int32_t SndfileLibrary::writeSync(std::int32_t file) {
    return library_.CallFunc("sf_write_sync", file);
}

std::int32_t SndfileLibrary::transfer(const char* name, std::int32_t file, const void* buffer,
                                      std::int64_t count) {
    return library_.CallFunc(name, file, buffer, low(count), high(count));
}

} // namespace corvina
