// Shows the area picker alone, and prints every crop that is chosen: areapage SETTINGS [WIDTH HEIGHT [FILE.png]]
// With a file it only writes a picture of itself there.

#include "model/AppModel.h"
#include "model/CaptureDevices.h"

#include <QFont>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QQuickView>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

Q_IMPORT_QML_PLUGIN(VantryPlugin)

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    QGuiApplication::setFont(QFont(QStringLiteral("Inter")));
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    const std::filesystem::path settings = argc > 1 ? argv[1] : "settings.ini";
    vantry::AppModel model({ .root = settings.parent_path() / "Videos", .settingsFile = settings });
    model.devices()->listDisplays();
    QQuickView view;
    view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    view.setInitialProperties({ { QStringLiteral("model"), QVariant::fromValue(&model) } });
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setSource(QUrl::fromLocalFile(QStringLiteral(AREA_PAGE)));
    if (view.status() != QQuickView::Ready) {
        std::fprintf(stderr, "The page could not be loaded\n");
        return 1;
    }
    QObject::connect(model.settings(), &vantry::Settings::setupCropChanged, &application, [&] {
        const auto crop = model.settings()->setupCrop();
        if (crop)
            std::printf("%.4f %.4f %.4f %.4f\n", crop->x, crop->y, crop->width, crop->height);
        else
            std::puts("all");
        std::fflush(stdout);
    });
    QObject::connect(view.engine(), &QQmlEngine::quit, &application, &QCoreApplication::quit);
    view.setTitle(QStringLiteral("Area page"));
    view.resize(argc > 3 ? QSize(std::stoi(argv[2]), std::stoi(argv[3])) : QSize(1024, 640));
    view.show();
    if (argc > 4)
        QTimer::singleShot(std::chrono::seconds(2), &view,
            [&] { QGuiApplication::exit(view.grabWindow().save(QString::fromLocal8Bit(argv[4])) ? 0 : 1); });
    return QGuiApplication::exec();
}
