#pragma once

// The caller of a library, unloaded at its end. A cDLL itself leaves that to its owner.

#include "stream/cDLL.h"

namespace corvina {

class OptionalLibrary final : public cDLL {
public:
    using cDLL::cDLL;
    ~OptionalLibrary() { UnloadDLL(); }
};

} // namespace corvina
