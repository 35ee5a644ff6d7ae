#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <filesystem>
#include <vector>

namespace vantry {

/// Where recordings live: one folder each, under one root. Knows folders only; what is in a project file is ProjectFile's business.
class ProjectStorage {
public:
    explicit ProjectStorage(std::filesystem::path root);

    /// "Vantry" in the user's folder of movies.
    static std::filesystem::path defaultRoot();

    const std::filesystem::path& root() const { return m_root; }

    /// A new folder that is named after the time, with a suffix where that name is taken. It may be missing after an error: the
    /// first save into it tells.
    std::filesystem::path createFolder(const QDateTime& now) const;

    /// Every folder there is, whatever is in it.
    std::vector<std::filesystem::path> folders() const;

    /// The project folders, newest first. Read from the disk each time; empty when there is no root.
    std::vector<std::filesystem::path> recent() const;

    /// Deletes a folder that nothing was ever put into.
    static void removeIfEmpty(const std::filesystem::path& folder);

private:
    std::filesystem::path m_root;
};

/// "Recording " with the date, abbreviated, and the time, short, as the locale writes them.
QString newProjectName(const QDateTime& now, const QLocale& locale);

} // namespace vantry
