#include "support/VirtualDrive.h"

#include "support/SoundSignal.h"
#include "support/TrackFile.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <windows.h>

#include <winioctl.h>

namespace corvina::test {
namespace {

constexpr std::int32_t sectorBytes = 2352;

// The test environment speaks of it as Unix does, whose root is drive Z.
std::string unixFolder() {
    const char* const folder = std::getenv("CORVINA_DRIVES");
    return folder ? folder : "";
}

std::string fileOf(const std::string& unixPath) {
    return "Z:" + unixPath;
}

std::string textOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const std::string& file, const void* bytes, std::size_t size) {
    std::ofstream stream(file, std::ios::binary);
    stream.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    if (!stream.flush())
        throw std::runtime_error("cannot write " + file);
}

void put(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

Bytes dataSector(std::int32_t lba) {
    Bytes sector(sectorBytes, 0x5A);
    std::fill_n(sector.begin() + 1, 10, std::uint8_t{0xFF});
    sector[0] = sector[11] = 0;
    const Msf time = msfOf(lba + 150);
    sector[12] = time.minute;
    sector[13] = time.second;
    sector[14] = time.frame;
    sector[15] = 1;
    return sector;
}

std::string timeText(std::int32_t sectors) {
    const Msf time = msfOf(sectors);
    char text[16];
    std::snprintf(text, sizeof(text), "%02d:%02d:%02d", time.minute, time.second, time.frame);
    return text;
}

} // namespace

DiscImage::DiscImage(std::vector<DiscTrack> tracks) : tracks_(std::move(tracks)) {
    static int serial = 0;
    const std::string name =
        "disc" + std::to_string(::GetCurrentProcessId()) + "_" + std::to_string(++serial);
    cue_ = unixFolder() + "/" + name + ".cue";
    std::string sheet = "FILE \"" + name + ".bin\" BINARY\n";
    for (int track = 1; track <= this->tracks(); ++track) {
        const DiscTrack& shape = tracks_[static_cast<std::size_t>(track) - 1];
        sheet += "  TRACK " + std::to_string(track) + (shape.audio ? " AUDIO\n" : " MODE1/2352\n");
        sheet += "    INDEX 01 " + timeText(start(track)) + "\n";
        if (shape.audio)
            put(data_, bytesOf(signal(static_cast<std::size_t>(shape.sectors) * sectorBytes / 4,
                                      static_cast<std::uint32_t>(serial * 100 + track))));
        else
            for (std::int32_t i = 0; i < shape.sectors; ++i)
                put(data_, dataSector(start(track) + i));
    }
    write(fileOf(unixFolder() + "/" + name + ".bin"), data_.data(), data_.size());
    write(fileOf(cue_), sheet.data(), sheet.size());
}

DiscImage::~DiscImage() {
    ::DeleteFileA(fileOf(cue_).c_str());
    ::DeleteFileA((fileOf(cue_.substr(0, cue_.size() - 3)) + "bin").c_str());
}

std::int32_t DiscImage::start(int track) const {
    std::int32_t lba = 0;
    for (int i = 1; i < track; ++i)
        lba += sectors(i);
    return lba;
}

std::int32_t DiscImage::sectors(int track) const {
    return tracks_.at(static_cast<std::size_t>(track) - 1).sectors;
}

Bytes DiscImage::bytes(std::int32_t lba, std::int32_t sectors) const {
    Bytes result(static_cast<std::size_t>(sectors) * sectorBytes);
    const auto from = static_cast<std::size_t>(lba) * sectorBytes;
    if (from < data_.size())
        std::copy_n(data_.begin() + static_cast<std::ptrdiff_t>(from),
                    std::min(result.size(), data_.size() - from), result.begin());
    return result;
}

Bytes DiscImage::trackFileOf(int track) const {
    return trackFile(msfOf(start(track) + 150), msfOf(sectors(track)));
}

bool VirtualDrive::exists(char letter) {
    return !unixFolder().empty() &&
           ::GetFileAttributesA((fileOf(unixFolder() + "/") + letter + ".drive").c_str()) !=
               INVALID_FILE_ATTRIBUTES;
}

VirtualDrive::VirtualDrive(char letter)
    : letter_(letter), logPath_(unixFolder() + "/" + letter + ".log") {
    std::istringstream old(textOf(fileOf(unixFolder() + "/") + letter + ".drive"));
    for (std::string line; std::getline(old, line);)
        if (line.starts_with("device ") || line.starts_with("address "))
            place_ += line + "\n";
    removeTrackFiles();
    set({});
}

VirtualDrive::~VirtualDrive() {
    removeTrackFiles();
    set({});
    ::DeleteFileA(fileOf(logPath_).c_str());
}

// Wine remembers the table of a device for as long as the process lives, except that asking whether
// the medium is still good makes it forget.
void VirtualDrive::makeWineForgetTheDisc() const {
    describe(place_);
    const char device[] = {'\\', '\\', '.', '\\', letter_, ':', '\0'};
    const HANDLE drive = ::CreateFileA(device, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD got = 0;
    ::DeviceIoControl(drive, IOCTL_STORAGE_CHECK_VERIFY, nullptr, 0, nullptr, 0, &got, nullptr);
    ::CloseHandle(drive);
}

void VirtualDrive::describe(const std::string& text) const {
    write(fileOf(unixFolder() + "/") + letter_ + ".drive", text.data(), text.size());
}

void VirtualDrive::set(std::vector<std::string> lines) {
    makeWineForgetTheDisc();
    // The number makes every description a new one, at which the drive starts to count anew.
    static int serial = 0;
    std::string text = "# " + std::to_string(::GetCurrentProcessId()) + " " +
                       std::to_string(++serial) + "\n" + place_ + "log " + logPath_ + "\n";
    for (const std::string& line : lines)
        text += line + "\n";
    ::DeleteFileA(fileOf(logPath_).c_str());
    describe(text);
}

void VirtualDrive::load(const DiscImage& disc, std::vector<std::string> lines) {
    removeTrackFiles();
    for (int track = 1; track <= disc.tracks(); ++track) {
        const Bytes file = disc.trackFileOf(track);
        const std::string path = fileOf(unixFolder() + "/") + letter_ + "/Track" +
                                 (track < 10 ? "0" : "") + std::to_string(track) + ".cda";
        write(path, file.data(), file.size());
        trackFiles_.emplace_back(path.begin(), path.end());
    }
    lines.insert(lines.begin(), "disc " + disc.cue());
    set(std::move(lines));
}

std::vector<std::string> VirtualDrive::requests() const {
    std::istringstream text(textOf(fileOf(logPath_)));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

std::wstring VirtualDrive::trackPath(int track) const {
    return std::wstring(1, static_cast<wchar_t>(letter_ - 'a' + 'A')) + L":\\Track" +
           (track < 10 ? L"0" : L"") + std::to_wstring(track) + L".cda";
}

std::string VirtualDrive::unixRoot() const {
    return unixFolder() + "/" + letter_;
}

void VirtualDrive::removeTrackFiles() {
    for (const std::wstring& file : trackFiles_)
        ::DeleteFileW(file.c_str());
    trackFiles_.clear();
}

} // namespace corvina::test
