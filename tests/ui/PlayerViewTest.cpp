#include "model/AppModel.h"
#include "model/PreviewFlow.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"
#include "support/TestProject.h"
#include "support/XServer.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <gtest/gtest.h>

#include <memory>

namespace vantry {

using namespace Qt::StringLiterals;
using test::pumpUntil;

namespace {

/// Which frame is seen in the window, as wide as the picture.
int frameIn(const QImage& image)
{
    for (int x = 0; x < image.width(); ++x)
        if (qGray(image.pixel(x, image.height() / 3)) > 65)
            return static_cast<int>(std::lround(double(x) / image.width() / test::barPlace(1)));
    return -1;
}

} // namespace

TEST(PlayerView, showsTheSamePictureWhileTheProjectIsBuiltAgain)
{
    const test::XServer screen(800, 600);
    qputenv("QT_QPA_PLATFORM", "xcb");
    int count = 1;
    char name[] = "test";
    char* arguments[]{ name, nullptr };
    const QGuiApplication application(count, arguments);
    const test::TemporaryFolder folder;
    test::writeTestProject(folder / "project", 2);
    AppModel model({ .root = folder / "Videos", .settingsFile = folder / "settings.ini" });
    QQmlEngine engine;
    QQmlComponent component(&engine, QUrl(u"qrc:/qt/qml/Vantry/PlayerView.qml"_s));
    const std::unique_ptr<QObject> object(component.createWithInitialProperties({ { u"model"_s, QVariant::fromValue(&model) } }));
    ASSERT_TRUE(object) << component.errorString().toStdString();
    QQuickWindow window;
    auto& view = dynamic_cast<QQuickItem&>(*object);
    view.setParentItem(window.contentItem());
    view.setSize({ 640, 360 + 44 });
    window.resize(640, 360 + 44);
    window.show();

    model.open(folder / "project");
    model.setPendingSeek(1);
    model.refreshPlayer();
    ASSERT_TRUE(pumpUntil([&] { return frameIn(window.grabWindow()) == 30; }));
    for (int i = 0; i < 8; ++i) {
        int built = 0, seen = 0;
        const auto connection = QObject::connect(model.preview(), &PreviewFlow::lengthChanged, [&] { ++built; });
        model.edit(Rebuild::Yes, [](Project& project) { project.bubbleSize += 0.01; });
        model.refreshPlayer();
        ASSERT_TRUE(pumpUntil([&] {
            EXPECT_EQ(frameIn(window.grabWindow()), 30);
            seen += built;
            return seen == 10;
        }));
        QObject::disconnect(connection);
    }
}

} // namespace vantry
