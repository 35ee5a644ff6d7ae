#pragma once

#include <QObject>
#include <QString>

#include <map>

namespace vantry {

/// Whether the desktop asks for less motion, as its settings portal tells it: by the switch that all desktops share, by GNOME's
/// animations or by the speed of KDE's. Without a portal nobody asks. Belongs to the main thread.
class MotionSetting : public QObject {
    Q_OBJECT

public:
    /// Asks, and follows what is changed from now on.
    MotionSetting();

    bool isReduced() const;

Q_SIGNALS:
    void changed();

private:
    Q_SLOT void ask();
    void ask(const QString& group, const QString& key);
    void take(const QString& key, bool isReduced);

    std::map<QString, bool> m_reduced; ///< By the setting's name; what each asks for.
};

} // namespace vantry
