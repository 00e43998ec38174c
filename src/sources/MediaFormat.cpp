#include "sources/MediaFormat.h"

#include "com/ComPtr.h"
#include "platform/MemoryProbe.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

constexpr GUID audioType = {
    0x73647561, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
constexpr GUID pcmSubtype = {
    0x00000001, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

constexpr WORD wantedBits = 16;

// Bounds that no file reaches; a reader that returns more would only keep the host waiting.
constexpr DWORD mostOutputs = 0xFFFF;
constexpr DWORD mostFormats = 0xFFFF;
constexpr DWORD largestMediaType = 1 << 20;

// A media type as the reader writes it: the record, and behind it the blocks that it points to.
class MediaType {
public:
    // Empty if the properties do not return their type.
    explicit MediaType(IWMOutputMediaProps& props) {
        DWORD size = 0;
        if (props.GetMediaType(nullptr, &size) != S_OK || size > largestMediaType)
            return;
        bytes_.resize(std::max<std::size_t>(size, sizeof(WM_MEDIA_TYPE)));
        if (props.GetMediaType(get(), &size) != S_OK)
            bytes_.clear();
    }

    [[nodiscard]] WM_MEDIA_TYPE* get() noexcept {
        return reinterpret_cast<WM_MEDIA_TYPE*>(bytes_.data());
    }

    [[nodiscard]] bool isPcmAudio() noexcept {
        return !bytes_.empty() && get()->majortype == audioType && get()->subtype == pcmSubtype;
    }

private:
    std::vector<std::uint8_t> bytes_;
};

// Whether the properties stand for 16-bit PCM, which they are then set to.
bool acceptProps(IWMOutputMediaProps& props, MediaFormat& format) {
    MediaType type(props);
    if (!type.isPcmAudio() || !format.takeOver(type.get()->pbFormat, type.get()->cbFormat) ||
        format.record().wBitsPerSample != wantedBits)
        return false;
    props.SetMediaType(type.get());
    return true;
}

} // namespace

bool MediaFormat::takeOver(const BYTE* block, std::size_t blockBytes) {
    const std::size_t recordBytes = std::min(blockBytes, sizeof(WAVEFORMATEX));
    if (!block || !isReadable(block, recordBytes))
        return false;
    WAVEFORMATEX record{};
    std::memcpy(&record, block, recordBytes);
    std::vector<std::uint8_t> bytes(sizeof record + record.cbSize);
    const std::size_t wholeBytes = std::min(blockBytes, bytes.size());
    std::memcpy(bytes.data(), block, isReadable(block, wholeBytes) ? wholeBytes : recordBytes);
    bytes_ = std::move(bytes);
    return true;
}

std::optional<MediaOutput> selectPcmOutput(IWMSyncReader& reader, MediaFormat& format) {
    DWORD outputs = 0;
    if (reader.GetOutputCount(&outputs) != S_OK) {
        reader.Close();
        return std::nullopt;
    }
    for (DWORD i = 0; i < std::min(outputs, mostOutputs); ++i) {
        DWORD formats = 0;
        if (reader.GetOutputFormatCount(i, &formats) != S_OK)
            continue;
        // The inner counter goes in as the output and the outer one as the format, and one past the
        // count, on purpose: a file has one audio output, so this asks for format 0, the reader's
        // own choice, of every output number there may be, and those that do not exist fail and are
        // passed over. Other formats of an output would be conversions that we have no use for.
        for (DWORD j = 0; j <= std::min(formats, mostFormats); ++j) {
            ComPtr<IWMOutputMediaProps> props;
            if (reader.GetOutputFormat(j, i, props.put()) != S_OK || !props.get())
                continue;
            if (acceptProps(*props.get(), format)) {
                reader.SetOutputProps(i, props.get());
                return MediaOutput{j, outputs};
            }
        }
    }
    return std::nullopt;
}

void playOnly(IWMSyncReader& reader, const MediaOutput& output) {
    if (output.number >= output.outputs)
        return;
    std::vector<WORD> others;
    for (DWORD number = 0; number < std::min(output.outputs, mostOutputs); ++number) {
        WORD stream = 0;
        if (number != output.number && reader.GetStreamNumberForOutput(number, &stream) == S_OK)
            others.push_back(stream);
    }
    std::vector<WMT_STREAM_SELECTION> off(others.size(), WMT_OFF);
    if (!others.empty())
        reader.SetStreamsSelected(static_cast<WORD>(others.size()), others.data(), off.data());
}

} // namespace corvina
