#pragma once

#include "platform/PixelRect.h"

#include <QDBusConnection>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace vantry {

/// One element of what a program says of its windows.
struct AccessibleElement {
    QString service{}; ///< The program's name on the bus.
    QString path{};
};

enum class AccessibleRole : std::uint32_t { Invalid = 0, ToolBar = 63, DocumentFrame = 82, DocumentWeb = 95 };

/// What programs say of their windows to assistive technologies. Questions about many elements are asked all at once. What a
/// program does not answer within a second counts as nothing. Belongs to one thread, which must not be one that answers others.
class AccessibleTree {
public:
    /// Throws AppError when the desktop has no bus for that.
    AccessibleTree();
    ~AccessibleTree();

    AccessibleTree(const AccessibleTree&) = delete;
    AccessibleTree& operator=(const AccessibleTree&) = delete;

    /// The root elements of a process's programs.
    std::vector<AccessibleElement> programsOf(std::uint32_t process) const;

    /// Of each element, in the same order.
    std::vector<AccessibleRole> roles(const std::vector<AccessibleElement>& elements) const;
    std::vector<std::vector<AccessibleElement>> children(const std::vector<AccessibleElement>& elements) const;

    /// On the desktop, in the pixels that the program counts in. Nothing for what has no place.
    std::optional<PixelRect> extents(const AccessibleElement& element) const;
    bool isShowing(const AccessibleElement& element) const;
    QString name(const AccessibleElement& element) const;

    /// What the program is made with: "Chromium", "Gecko" …
    QString toolkit(const AccessibleElement& program) const;

    /// Some programs say more once they were asked for details.
    void askForDetails(const AccessibleElement& element) const;

private:
    QDBusConnection m_bus;
};

} // namespace vantry
