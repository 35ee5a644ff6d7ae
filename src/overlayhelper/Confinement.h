#pragma once

namespace vantry {

// What this program may do and reach, decided before its first thread starts.

/// Standard input under another number that the engine's processes do not inherit; only what we write there goes to the
/// application. Standard input and output become nothing.
int keepSocketForOurselves();

/// The system ends this process with the thread that started it.
void endWithParent();

/// No network below this process, by the kernel's hand. Where the kernel does not allow this, the engine's request filter still
/// stands.
void leaveNetwork();

} // namespace vantry
