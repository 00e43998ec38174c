#include "control/PropertyValues.h"

#include "com/Variant.h"

#include <algorithm>
#include <cstring>
#include <oleauto.h>
#include <optional>

namespace corvina {
namespace {

constexpr char signature[4] = {'C', 'r', 'v', '1'};
constexpr std::uint32_t mostValues = 4096;
constexpr const wchar_t* extentNames[2] = {L"_ExtentX", L"_ExtentY"};

struct Header {
    char signature[4];
    std::int32_t width;
    std::int32_t height;
    std::uint32_t count;
};
static_assert(sizeof(Header) == 16);

// An empty list may lie at a null address, which the streams of compound files refuse.
HRESULT readAll(IStream& stream, void* data, ULONG bytes) {
    if (bytes == 0)
        return S_OK;
    ULONG got = 0;
    const HRESULT result = stream.Read(data, bytes, &got);
    if (FAILED(result))
        return result;
    return got == bytes ? S_OK : STG_E_READFAULT;
}

HRESULT writeAll(IStream& stream, const void* data, ULONG bytes) {
    if (bytes == 0)
        return S_OK;
    ULONG done = 0;
    const HRESULT result = stream.Write(data, bytes, &done);
    if (FAILED(result))
        return result;
    return done == bytes ? S_OK : STG_E_MEDIUMFULL;
}

// A whole number from the bag; nothing if the name is missing or the value is no number.
std::optional<std::int32_t> read(IPropertyBag& bag, const wchar_t* name, IErrorLog* log) {
    Variant value(0); // bags convert to the type that they are asked for
    return SUCCEEDED(bag.Read(name, &value, log)) ? numberOf(value) : std::nullopt;
}

HRESULT write(IPropertyBag& bag, const wchar_t* name, std::int32_t number) {
    Variant value(number);
    return bag.Write(name, &value);
}

} // namespace

PropertyValues::PropertyValues(const ControlClass& controlClass, ControlExtent& extent)
    : table_(controlClass.properties), extent_(extent) {
    reset();
}

bool PropertyValues::accepts(int index, std::int32_t value) const {
    const auto accept = table_[static_cast<std::size_t>(index)].accepts;
    return !accept || accept(value);
}

void PropertyValues::set(int index, std::int32_t value) {
    values_[static_cast<std::size_t>(index)] = value;
    dirty_ = true;
}

void PropertyValues::reset() {
    values_.resize(table_.size());
    std::transform(table_.begin(), table_.end(), values_.begin(),
                   [](const Property& property) { return property.initial; });
    extent_.set(extent_.natural());
    dirty_ = false;
}

HRESULT PropertyValues::load(IStream& stream) {
    reset();
    Header header{};
    if (const HRESULT read = readAll(stream, &header, sizeof header); FAILED(read))
        return read;
    if (std::memcmp(header.signature, signature, sizeof signature) != 0 || header.width < 0 ||
        header.height < 0 || header.count > mostValues)
        return STG_E_DOCFILECORRUPT;
    std::vector<std::int32_t> stored(header.count);
    if (const HRESULT read =
            readAll(stream, stored.data(), static_cast<ULONG>(stored.size() * sizeof stored[0]));
        FAILED(read))
        return read;

    // A list that is longer than the table is a newer version's; what is unknown is passed over.
    const std::size_t known = std::min(stored.size(), values_.size());
    for (std::size_t i = 0; i < known; ++i)
        if (accepts(static_cast<int>(i), stored[i]))
            values_[i] = stored[i];
    extent_.set({header.width, header.height});
    return S_OK;
}

HRESULT PropertyValues::save(IStream& stream) const {
    const SIZE extent = extent_.get();
    Header header{{}, extent.cx, extent.cy, static_cast<std::uint32_t>(values_.size())};
    std::memcpy(header.signature, signature, sizeof signature);
    const HRESULT written = writeAll(stream, &header, sizeof header);
    return FAILED(written) ? written
                           : writeAll(stream, values_.data(),
                                      static_cast<ULONG>(values_.size() * sizeof values_[0]));
}

std::uint32_t PropertyValues::streamSize() const noexcept {
    return static_cast<std::uint32_t>(sizeof(Header) + values_.size() * sizeof values_[0]);
}

HRESULT PropertyValues::load(IPropertyBag& bag, IErrorLog* log) {
    reset();
    for (std::size_t i = 0; i < table_.size(); ++i)
        if (const auto stored = read(bag, table_[i].name, log);
            stored && accepts(static_cast<int>(i), *stored))
            values_[i] = *stored;
    const auto width = read(bag, extentNames[0], nullptr);
    const auto height = read(bag, extentNames[1], nullptr);
    if (width && height)
        extent_.set({*width, *height});
    return S_OK;
}

HRESULT PropertyValues::save(IPropertyBag& bag, bool everything) const {
    for (std::size_t i = 0; i < table_.size(); ++i) {
        if (!everything && values_[i] == table_[i].initial)
            continue;
        if (const HRESULT written = write(bag, table_[i].name, values_[i]); FAILED(written))
            return written;
    }
    const SIZE extent = extent_.get();
    const HRESULT written = write(bag, extentNames[0], extent.cx);
    return FAILED(written) ? written : write(bag, extentNames[1], extent.cy);
}

} // namespace corvina
