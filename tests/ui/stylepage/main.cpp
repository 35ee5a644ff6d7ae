// Shows the style kit in all its states, or writes a picture of that: stylepage [FILE.png]

#include <QFont>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QQuickView>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>

Q_IMPORT_QML_PLUGIN(VantryPlugin)

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    QGuiApplication::setFont(QFont(QStringLiteral("Inter")));
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QQuickView view;
    view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    view.setSource(QUrl::fromLocalFile(QStringLiteral(STYLE_PAGE)));
    if (view.status() != QQuickView::Ready) {
        std::fprintf(stderr, "The page could not be loaded\n");
        return 1;
    }
    view.setTitle(QStringLiteral("Vantry style"));
    view.show();
    if (argc < 2)
        return QGuiApplication::exec();
    // What comes smoothly is there by then.
    QObject::connect(&view, &QQuickWindow::frameSwapped, &application, [&, frames = 0]() mutable {
        if (++frames == 2)
            QGuiApplication::exit(view.grabWindow().save(QString::fromLocal8Bit(argv[1])) ? 0 : 1);
        view.update();
    });
    return QGuiApplication::exec();
}
