#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "platform/Displays.h"

#include <QString>
#include <QVariant>
#include <QVariantList>

#include <functional>
#include <optional>

namespace vantry {

class Settings;

/// The areas of the chosen display that were chosen last, to choose them again. Belongs to the main thread.
class RecentAreas : public QObject {
    Q_OBJECT

    /// At most three, the newest first: each with its `crop` and a `text` that says how large it is now. As of the last `refresh`.
    Q_PROPERTY(QVariantList areas READ areas NOTIFY changed)

public:
    using ChosenDisplay = std::function<std::optional<Display>()>;

    /// The settings outlive it.
    RecentAreas(Settings& settings, ChosenDisplay display);

    QVariantList areas() const { return m_areas; }

    /// Lists those of the display that is chosen now.
    Q_INVOKABLE void refresh();

    /// The crop was chosen on the display that is chosen now. All of the screen is nothing to remember.
    Q_INVOKABLE void remember(const QVariant& crop);

    /// For the user: the crop was chosen when the display had another size. Empty when that is not so, or not known.
    Q_INVOKABLE QString sizeNote(const QVariant& crop) const;

Q_SIGNALS:
    void changed();

private:
    Settings& m_settings;
    const ChosenDisplay m_display;
    QVariantList m_areas;
};

} // namespace vantry
