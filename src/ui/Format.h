#pragma once

#include "project/Timecode.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <qqmlregistration.h>

namespace vantry {

/// Values as the views write them.
class Format : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE QString path(const QUrl& file) const { return file.toLocalFile(); }
    Q_INVOKABLE QString fileName(const QUrl& file) const { return file.fileName(); }
    Q_INVOKABLE QUrl folder(const QUrl& file) const { return file.adjusted(QUrl::RemoveFilename | QUrl::StripTrailingSlash); }
    Q_INVOKABLE QString timecode(double seconds) const { return QString::fromStdString(vantry::timecode(seconds)); }
};

} // namespace vantry
