#include "sources/SndfileLibrary.h"

namespace corvina {

SndfileLibrary::SndfileLibrary(const LibraryApi& api) : library_(api) {
    library_.LoadDLL(L"libsndfile.dll");
    library_.IsCDECL(true);
}

SndfileLibrary::~SndfileLibrary() {
    library_.UnloadDLL();
}

} // namespace corvina
