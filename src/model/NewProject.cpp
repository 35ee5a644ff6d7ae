#include "model/NewProject.h"

#include "model/ProjectStorage.h"
#include "model/Settings.h"

namespace vantry {

Project newProject(const Settings& settings, const QDateTime& time)
{
    static const QDateTime zero(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    Project project;
    project.name = newProjectName(time, QLocale::system()).toStdString();
    project.created.secondsSince2001 = static_cast<double>(zero.msecsTo(time)) / 1000;
    project.layouts = { { .time = 0, .layout = settings.setupLayout(), .corner = settings.setupCorner() } };
    project.bubbleSize = settings.setupBubble();
    project.blurBackground = settings.setupBlur();
    project.screenCrop = settings.setupCrop();
    return project;
}

} // namespace vantry
