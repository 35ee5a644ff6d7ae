#pragma once

#include <QString>

namespace vantry {

/// Our own document, empty and transparent, in which `stage.js` gives a fragment's document a frame.
QString stage();

/// The document in which a fragment stands: transparent, `cssWidth` wide, with a margin for shadows. Both documents forbid
/// everything that would come from outside.
QString documentOf(const QString& fragment, double cssWidth);

} // namespace vantry
