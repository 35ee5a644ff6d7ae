#include "model/VideoFiles.h"

#include "model/Paths.h"

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

constexpr auto ending = ".mp4"_L1;

} // namespace

QUrl suggestedVideo(const std::filesystem::path& folder, const Project* project)
{
    QString name = u"video"_s;
    if (project)
        name = QString::fromStdString(project->youtube.title.empty() ? project->name : project->youtube.title);
    return QUrl::fromLocalFile(text(folder) + u'/' + name.replace(u'/', u'-') + ending);
}

QUrl videoIn(const QUrl& folder, const QString& name)
{
    QString stem = name.trimmed();
    if (stem.endsWith(ending, Qt::CaseInsensitive))
        stem.chop(ending.size());
    if (stem.isEmpty() || stem.contains(u'/'))
        return {};
    return QUrl::fromLocalFile(folder.toLocalFile() + u'/' + stem + ending);
}

bool isTaken(const QUrl& file)
{
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(toPath(file.toLocalFile()), ignored));
}

} // namespace vantry
