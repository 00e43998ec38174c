#pragma once

// Late-bound calls of methods that take a record, which not every platform's ITypeInfo::Invoke can
// do.

#include <oaidl.h>

namespace corvina {

// As IDispatch::Invoke, for one method of a dual interface. Arguments may be positional and named;
// a record is given as VT_RECORD of the declared type and is filled in place, whether by reference
// or not. E_NOTIMPL for members that take no record.
[[nodiscard]] HRESULT callWithRecords(ITypeInfo& info, IUnknown* object, DISPID id, WORD flags,
                                      const DISPPARAMS& arguments, VARIANT* result,
                                      EXCEPINFO* exception, UINT* badArgument) noexcept;

} // namespace corvina
