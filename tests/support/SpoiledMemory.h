#pragma once

#include <malloc.h>

namespace vantry::test {

/// While it exists, memory that is given back is filled with nonsense at once: whoever goes on using it notices. That also holds
/// for libraries, which the sanitizers do not look into.
struct SpoiledMemory {
    SpoiledMemory() { mallopt(M_PERTURB, 0xa5); }
    ~SpoiledMemory() { mallopt(M_PERTURB, 0); }

    SpoiledMemory(const SpoiledMemory&) = delete;
    SpoiledMemory& operator=(const SpoiledMemory&) = delete;
};

} // namespace vantry::test
