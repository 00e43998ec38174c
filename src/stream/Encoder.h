#pragma once

// A component that writes PCM to an encoded file: the published interface IEncoder with every
// member empty. It returns 0 and empty texts, keeps nothing and writes nothing; an encoder derives
// from it and overrides what it supports. Nothing in this library encodes.

#include "com/Dispatch.h"
#include "com/Implements.h"

#include "Corvina.h"

namespace corvina {

class Encoder : public Implements<Dispatch<IEncoder>> {
public:
    HRESULT STDMETHODCALLTYPE put_Title(BSTR strTitle) override;
    HRESULT STDMETHODCALLTYPE get_Title(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Album(BSTR strAlbum) override;
    HRESULT STDMETHODCALLTYPE get_Album(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Artist(BSTR strArtist) override;
    HRESULT STDMETHODCALLTYPE get_Artist(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_SongYear(BSTR strSongYear) override;
    HRESULT STDMETHODCALLTYPE get_SongYear(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Genre(BSTR strGenre) override;
    HRESULT STDMETHODCALLTYPE get_Genre(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Comment(BSTR strComment) override;
    HRESULT STDMETHODCALLTYPE get_Comment(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_TrackNr(BSTR strTrackNr) override;
    HRESULT STDMETHODCALLTYPE get_TrackNr(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_EncodedBy(BSTR strEncodedBy) override;
    HRESULT STDMETHODCALLTYPE get_EncodedBy(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_LinkTo(BSTR strLinkTo) override;
    HRESULT STDMETHODCALLTYPE get_LinkTo(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Copyright(BSTR strCopyright) override;
    HRESULT STDMETHODCALLTYPE get_Copyright(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Composer(BSTR strComposer) override;
    HRESULT STDMETHODCALLTYPE get_Composer(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_OrigArtist(BSTR strComposer) override;
    HRESULT STDMETHODCALLTYPE get_OrigArtist(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_BytesProcessed(double* result) override;
    HRESULT STDMETHODCALLTYPE get_Extension(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE DeInit(long* result) override;
    HRESULT STDMETHODCALLTYPE Init(BSTR dstFilename, long srcSampleRate, short srcChannels,
                                   short srcBitsPerSample, long* cbPCMData, long* result) override;
    HRESULT STDMETHODCALLTYPE Encode(long ptr, long bytes, long* result) override;
};

} // namespace corvina
