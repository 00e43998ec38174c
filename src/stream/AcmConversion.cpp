#include "stream/AcmConversion.h"

#include <algorithm>

namespace corvina {

std::unique_ptr<Conversion> AcmConversion::open(const AcmApi& acm, const WAVEFORMATEX& source,
                                                WAVEFORMATEX& output) {
    HACMSTREAM opened = nullptr;
    if (acm.streamOpen(&opened, nullptr, const_cast<WAVEFORMATEX*>(&source), &output, nullptr, 0, 0,
                       0) != 0 ||
        !opened)
        return nullptr;
    AcmStream stream(acm, opened);
    return std::unique_ptr<Conversion>(new AcmConversion(acm, std::move(stream)));
}

std::optional<std::uint32_t> AcmConversion::sourceBytes(std::uint32_t outputBytes) {
    DWORD source = 0;
    if (acm_.streamSize(stream_.get(), outputBytes, &source, ACM_STREAMSIZEF_DESTINATION) != 0)
        return std::nullopt;
    return source;
}

std::optional<ConvertedBytes> AcmConversion::convert(std::span<std::uint8_t> source,
                                                     std::span<std::uint8_t> output, bool first,
                                                     bool last) noexcept {
    ACMSTREAMHEADER header{};
    header.cbStruct = sizeof header;
    header.pbSrc = source.data();
    header.cbSrcLength = static_cast<DWORD>(source.size());
    header.pbDst = output.data();
    header.cbDstLength = static_cast<DWORD>(output.size());

    DWORD flags = ACM_STREAMCONVERTF_BLOCKALIGN;
    if (first)
        flags |= ACM_STREAMCONVERTF_START;
    if (last)
        flags |= ACM_STREAMCONVERTF_END;

    std::optional<ConvertedBytes> result;
    acm_.streamPrepareHeader(stream_.get(), &header, 0);
    if (acm_.streamConvert(stream_.get(), &header, flags) == 0)
        result = {.used = std::min<std::uint32_t>(header.cbSrcLengthUsed, header.cbSrcLength),
                  .produced = std::min<std::uint32_t>(header.cbDstLengthUsed, header.cbDstLength)};
    acm_.streamUnprepareHeader(stream_.get(), &header, 0);
    return result;
}

} // namespace corvina
