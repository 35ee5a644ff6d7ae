#include "ui/PictureView.h"
#include "ui/TestPictures.h"

#include <QGuiApplication>
#include <QQuickWindow>

#include <string>

using namespace vantry;
using namespace Qt::StringLiterals;

/// picturewindow WIDTH HEIGHT
///
/// Shows a picture of 640x360 in a magenta window of this size, in the corner of the screen, until it is ended. Its title says what
/// draws it.
int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    if (argc != 3)
        return EXIT_FAILURE;
    QQuickWindow window;
    window.setColor(Qt::magenta);
    window.setGeometry(0, 0, std::stoi(argv[1]), std::stoi(argv[2]));
    PictureView view(window.contentItem());
    view.setSize(window.size());
    view.setPicture(test::colouredNoise(640, 360));
    QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&] {
        const auto api = window.rendererInterface()->graphicsApi();
        window.setTitle(api == QSGRendererInterface::OpenGL ? u"OpenGL"_s : u"Software"_s);
    });
    window.show();
    return QGuiApplication::exec();
}
