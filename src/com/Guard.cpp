#include "com/Guard.h"

#include "com/ComPtr.h"
#include "runtime/RuntimeError.h"

#include <new>
#include <oleauto.h>
#include <string>

namespace corvina {
namespace {

constexpr std::int32_t frameworkBase = static_cast<std::int32_t>(0x800A0000);

HRESULT reportError(const RuntimeError& error, REFIID iid, const wchar_t* source) noexcept {
    const HRESULT result = error.number() < 0 ? error.number() : frameworkBase + error.number();
    ComPtr<ICreateErrorInfo> info;
    if (FAILED(::CreateErrorInfo(info.put())))
        return result;
    std::wstring text, from;
    try {
        text = error.text();
        from = error.source().empty() ? source : error.source();
    } catch (const std::bad_alloc&) {
        return result;
    }
    info->SetGUID(iid);
    info->SetDescription(text.data());
    info->SetSource(from.data());
    if (const auto finished = info.query<IErrorInfo>())
        ::SetErrorInfo(0, finished.get());
    return result;
}

} // namespace

HRESULT currentExceptionToHresult(REFIID iid, const wchar_t* source) noexcept {
    try {
        throw;
    } catch (const RuntimeError& error) {
        return reportError(error, iid, source);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

} // namespace corvina
