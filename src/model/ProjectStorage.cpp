#include "model/ProjectStorage.h"

#include "model/Paths.h"

#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <system_error>

namespace vantry {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

/// The locale's long date without the weekday and with the month's short name: Qt has no style of that length itself.
QString abbreviatedDate(const QDate& date, const QLocale& locale)
{
    static const QRegularExpression weekday(uR"(^d{3,4}[.,،]?\s*(?:'[^']*'\s*)?|[,،]?\s*d{3,4}$)"_s);
    QString format = locale.dateFormat(QLocale::LongFormat);
    format.remove(weekday).replace("MMMM"_L1, "MMM"_L1);
    return locale.toString(date, format);
}

} // namespace

ProjectStorage::ProjectStorage(fs::path root)
    : m_root(std::move(root))
{
}

fs::path ProjectStorage::defaultRoot()
{
    QString movies = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    // A user without a folder of movies is told to have the home folder for one.
    if (movies.isEmpty() || QDir(movies) == QDir::home())
        movies = QDir::home().filePath(u"Videos"_s);
    return toPath(movies) / "Vantry";
}

fs::path ProjectStorage::createFolder(const QDateTime& now) const
{
    std::error_code error;
    fs::create_directories(m_root, error);
    const std::string name = now.toString(u"yyyy-MM-dd'T'HHmmss"_s).toStdString();
    fs::path folder = m_root / name;
    // Creating is the test whether the name is free, so that two that come at once never share a folder.
    for (int suffix = 2; !fs::create_directory(folder, error) && !error; ++suffix)
        folder = m_root / (name + "-" + std::to_string(suffix));
    return folder;
}

std::vector<fs::path> ProjectStorage::folders() const
{
    std::vector<fs::path> folders;
    std::error_code error;
    for (fs::directory_iterator entry(m_root, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code unreadable;
        if (entry->is_directory(unreadable))
            folders.push_back(entry->path());
    }
    return folders;
}

std::vector<fs::path> ProjectStorage::recent() const
{
    std::vector<fs::path> folders = this->folders();
    std::erase_if(folders, [](const fs::path& folder) {
        std::error_code unreadable;
        return !fs::is_regular_file(folder / "project.json", unreadable);
    });
    std::ranges::sort(folders, std::ranges::greater(), [](const fs::path& folder) { return folder.filename().string(); });
    return folders;
}

void ProjectStorage::removeIfEmpty(const fs::path& folder)
{
    // The system itself refuses to remove a folder that holds anything, but would remove a file of that name.
    std::error_code error;
    if (fs::is_directory(folder, error))
        fs::remove(folder, error);
}

QString newProjectName(const QDateTime& now, const QLocale& locale)
{
    const QLocale spoken = locale.language() == QLocale::C ? QLocale(QLocale::English, QLocale::UnitedStates) : locale;
    const auto joint = spoken.language() == QLocale::English ? " at "_L1 : ", "_L1;
    return "Recording "_L1 + abbreviatedDate(now.date(), spoken) + joint + spoken.toString(now.time(), QLocale::ShortFormat);
}

} // namespace vantry
