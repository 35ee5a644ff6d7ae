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
    QQmlEngine engine;
    QQmlComponent component(&engine, QUrl(u"qrc:/qt/qml/Vantry/BubblePanel.qml"_s));
    const std::unique_ptr<QObject> object(
        component.createWithInitialProperties({ { u"shown"_s, false }, { u"place"_s, QRectF(10, 20, 260, 260) } }));
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
    EXPECT_GT(widths.size(), 3);
}

} // namespace vantry
