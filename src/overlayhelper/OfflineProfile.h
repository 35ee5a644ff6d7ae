#pragma once

#include <QWebEngineProfile>

namespace vantry {

/// What pages may do: nothing but show what they hold. No scripts, no requests but for what a page carries in itself, nothing on
/// disk.
class OfflineProfile : public QWebEngineProfile {
public:
    OfflineProfile();
};

} // namespace vantry
