#pragma once

#include "platform/ClientWindows.h"

#include <set>
#include <string>
#include <vector>

namespace vantry {

/// The programs that this desktop offers for opening web addresses.
class WebBrowsers {
public:
    /// Reads the desktop's list of applications, which takes a while.
    WebBrowsers();

    /// Whether a window is of one of them.
    bool own(const ClientWindow& window) const;

private:
    void add(const std::string& file);

    std::set<std::string> m_names; ///< Whatever a window or its process may be known by; lower case.
};

} // namespace vantry
