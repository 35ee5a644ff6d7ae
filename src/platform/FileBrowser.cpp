#include "platform/FileBrowser.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QUrl>

namespace vantry {

using namespace Qt::StringLiterals;

void revealInFileBrowser(const std::filesystem::path& file)
{
    const QUrl url = QUrl::fromLocalFile(QFile::decodeName(file.c_str()));
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s, u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    call << QStringList(url.toString(QUrl::FullyEncoded)) << QString();
    QDBusConnection::sessionBus().send(call);
}

} // namespace vantry
