#pragma once

#include "base/Words.h"

#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace vantry {

/// What things of this platform are called, for the views.
class Words : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString recordKeys MEMBER m_recordKeys CONSTANT)
    Q_PROPERTY(QString backKeys MEMBER m_backKeys CONSTANT)
    Q_PROPERTY(QString cameraKeys MEMBER m_cameraKeys CONSTANT)
    Q_PROPERTY(QString bubbleKeys MEMBER m_bubbleKeys CONSTANT)
    Q_PROPERTY(QString screenKeys MEMBER m_screenKeys CONSTANT)
    Q_PROPERTY(QString cornerKeys MEMBER m_cornerKeys CONSTANT)
    Q_PROPERTY(QString startKey MEMBER m_startKey CONSTANT)

private:
    const QString m_recordKeys = QString::fromLatin1(words::recordKeys);
    const QString m_backKeys = QString::fromLatin1(words::backKeys);
    const QString m_cameraKeys = QString::fromLatin1(words::cameraKeys);
    const QString m_bubbleKeys = QString::fromLatin1(words::bubbleKeys);
    const QString m_screenKeys = QString::fromLatin1(words::screenKeys);
    const QString m_cornerKeys = QString::fromLatin1(words::cornerKeys);
    const QString m_startKey = QString::fromLatin1(words::startKey);
};

} // namespace vantry
