#pragma once

#include <QString>

namespace vantry {

/// The document in which a fragment stands: transparent, `cssWidth` wide, with a margin for shadows. It forbids everything that
/// would come from outside, and nothing in it moves by itself.
QString documentOf(const QString& fragment, double cssWidth);

/// A script that puts every animation where it is meant to be looked at: at its end, or at its start if it has none.
QString freezingScript();

} // namespace vantry
