#pragma once

// A source under further extensions. The published source keeps its list of extensions; this one
// stands behind it in the list of sources and makes a source of its own when the first file is
// opened.

#include "stream/cSoundSTRM.h"

#include <memory>
#include <utility>

namespace corvina {

template <typename Source>
class SourceAlias final : public cSoundSTRM {
public:
    explicit SourceAlias(std::vector<std::wstring> extensions)
        : extensions_(std::move(extensions)) {}

    cSoundInf& Info() override { return source().Info(); }
    std::vector<std::wstring> Extensions() override { return extensions_; }
    bool EndOfStream() override { return source().EndOfStream(); }
    bool Seekable() override { return source().Seekable(); }
    const WAVEFORMATEX* WFXPointer() override { return source().WFXPointer(); }
    std::int32_t OpenSource(const std::wstring& name) override { return source().OpenSource(name); }
    std::int32_t CloseSource() override { return source().CloseSource(); }
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override {
        return source().Read(buffer, bytes, bytesRead);
    }
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override {
        return source().SeekTo(value, mode);
    }
    bool hasLeadIn() override { return source().hasLeadIn(); }
    LeadIn goToLeadIn() override { return source().goToLeadIn(); }

private:
    [[nodiscard]] cSoundSTRM& source() {
        if (!source_)
            source_ = std::make_unique<Source>();
        return *source_;
    }

    std::vector<std::wstring> extensions_;
    std::unique_ptr<cSoundSTRM> source_;
};

} // namespace corvina
