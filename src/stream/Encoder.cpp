#include "stream/Encoder.h"

namespace corvina {
namespace {

HRESULT empty(BSTR* result) noexcept {
    if (!result)
        return E_POINTER;
    *result = nullptr; // a text of length 0
    return S_OK;
}

template <typename Number>
HRESULT zero(Number* result) noexcept {
    if (!result)
        return E_POINTER;
    *result = 0;
    return S_OK;
}

} // namespace

HRESULT Encoder::put_Title(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_Title(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_Album(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_Album(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_Artist(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_Artist(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_SongYear(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_SongYear(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_Genre(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_Genre(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_Comment(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_Comment(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_TrackNr(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_TrackNr(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_EncodedBy(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_EncodedBy(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_LinkTo(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_LinkTo(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_Copyright(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_Copyright(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_Composer(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_Composer(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::put_OrigArtist(BSTR) {
    return S_OK;
}
HRESULT Encoder::get_OrigArtist(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::get_BytesProcessed(double* result) {
    return zero(result);
}

HRESULT Encoder::get_Extension(BSTR* result) {
    return empty(result);
}

HRESULT Encoder::DeInit(long* result) {
    return zero(result);
}

HRESULT Encoder::Init(BSTR, long, short, short, long*, long* result) {
    return zero(result);
}

HRESULT Encoder::Encode(long, long, long* result) {
    return zero(result);
}

} // namespace corvina
