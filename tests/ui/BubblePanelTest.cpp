#include "capture/CameraPreview.h"
#include "media/Picture.h"
#include "model/CameraMirror.h"
#include "support/PumpUntil.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>

Q_IMPORT_QML_PLUGIN(VantryPlugin)

namespace vantry {

using namespace Qt::StringLiterals;
using test::pumpUntil;

TEST(BubblePanel, goesToANewPlaceSmoothlyWhileItIsSeen)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 1;
    char name[] = "test";
    char* arguments[]{ name, nullptr };
    const QGuiApplication application(count, arguments);
    CameraPreview camera;
    CameraMirror mirror(camera);
    QQmlEngine engine;
    QQmlComponent component(&engine, QUrl(u"qrc:/qt/qml/Vantry/BubblePanel.qml"_s));
    const std::unique_ptr<QObject> object(component.createWithInitialProperties(
        { { u"mirror"_s, QVariant::fromValue(&mirror) }, { u"shown"_s, false }, { u"place"_s, QRectF(10, 20, 260, 260) } }));
    ASSERT_TRUE(object) << component.errorString().toStdString();
    auto& window = dynamic_cast<QQuickWindow&>(*object);
    std::set<int> widths;
    QObject::connect(&window, &QWindow::widthChanged, &window, [&](int width) { widths.insert(width); });

    // Hidden, it is there at once.
    window.setProperty("place", QRectF(40, 50, 300, 300));
    EXPECT_EQ(window.geometry(), QRect(40, 50, 300, 300));
    window.setProperty("shown", true);
    ASSERT_TRUE(pumpUntil([&] { return window.isExposed(); }));
    EXPECT_EQ(window.geometry(), QRect(40, 50, 300, 300));

    widths.clear();
    window.setProperty("place", QRectF(400, 300, 200, 200));
    ASSERT_TRUE(pumpUntil([&] { return window.geometry() == QRect(400, 300, 200, 200); }));
    EXPECT_GT(widths.size(), 1) << "and not in one step";

    // What the camera sees is there with its next picture, and round.
    PictureBuffer orange(640, 360);
    orange.fill(120, 60, 180);
    camera.set(PictureSample{ std::move(orange).share(), HostClock::now() });
    const auto isOrange = [&](int x, int y) {
        const QColor seen = window.grabWindow().pixelColor(x, y);
        return std::abs(seen.red() - 214) < 12 && std::abs(seen.green() - 108) < 12;
    };
    EXPECT_TRUE(pumpUntil([&] { return isOrange(100, 100) && isOrange(100, 8); }));
    EXPECT_FALSE(isOrange(8, 8));
    camera.set({});
    EXPECT_TRUE(pumpUntil([&] { return !isOrange(100, 8); }));
}

} // namespace vantry
