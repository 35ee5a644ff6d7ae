#include "overlayhelper/Environment.h"

#include "base/OverlayProtocol.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace vantry {

namespace {

/// The file that names the fonts stands beside the program.
QByteArray fontsFile()
{
    return QFile::encodeName(
        QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath() + QStringLiteral("/vantry-overlays-fonts.conf"));
}

} // namespace

void setUpEnvironment()
{
    for (const char* variable : { "DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "LANGUAGE", "QT_ENABLE_HIGHDPI_SCALING",
             "QT_FONT_DPI", "QT_LOGGING_RULES", "QT_QPA_PLATFORMTHEME", "QT_SCREEN_SCALE_FACTORS", "QT_STYLE_OVERRIDE",
             "QT_USE_PHYSICAL_DPI", "QTWEBENGINE_DISABLE_SANDBOX", "QTWEBENGINE_REMOTE_DEBUGGING" })
        qunsetenv(variable);
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("FONTCONFIG_FILE", fontsFile());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("QT_SCALE_FACTOR", QByteArray::number(overlays::scale));
    // An image is decoded before the frame that shows it, never after; one that moves stands at its first picture.
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-checker-imaging --blink-settings=imageAnimationPolicy=2 --disable-logging");
    // The engine's sandbox refuses to work for root.
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
}

} // namespace vantry
