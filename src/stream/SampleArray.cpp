#include "stream/SampleArray.h"

#include <oleauto.h>

namespace corvina {

SAFEARRAY* SampleArray::view(std::int16_t* samples, std::size_t count) noexcept {
    // Written anew each time: an observer has the descriptor in its hands.
    block_.elementType = VT_I2;
    SAFEARRAY& array = block_.descriptor;
    array.cDims = 1;
    array.fFeatures = FADF_STATIC | FADF_FIXEDSIZE | FADF_HAVEVARTYPE;
    array.cbElements = sizeof(std::int16_t);
    array.cLocks = 1;
    array.pvData = samples;
    array.rgsabound[0].cElements = static_cast<ULONG>(count);
    array.rgsabound[0].lLbound = 0;
    return &array;
}

void SampleArray::takeBack(SAFEARRAY* returned) noexcept {
    if (returned && returned != &block_.descriptor)
        ::SafeArrayDestroy(returned);
}

} // namespace corvina
