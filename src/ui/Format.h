#pragma once

#include "project/Timecode.h"

#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace vantry {

/// Values as the views write them.
class Format : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE QString timecode(double seconds) const { return QString::fromStdString(vantry::timecode(seconds)); }
};

} // namespace vantry
