#pragma once

#include "base/Descriptor.h"

namespace vantry {

/// An event that every thread can wait for together with a file.
class WakeUp {
public:
    /// Throws AppError.
    WakeUp();

    /// From any thread. It stays called.
    void call() const;
    bool wasCalled() const;
    int descriptor() const { return m_event.number(); }

private:
    const Descriptor m_event;
};

} // namespace vantry
