#include "model/SalvageFlow.h"

#include "base/Background.h"
#include "base/Log.h"
#include "media/MovieSalvage.h"
#include "model/AppModel.h"
#include "model/Coroutines.h"
#include "model/NewProject.h"
#include "model/Paths.h"
#include "project/ProjectFile.h"

#include <QCoroFuture>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

/// At the project's end, unless it is there already.
void append(Project& project, const std::string& file, double length)
{
    if (std::ranges::find(project.clips, file, &Clip::file) == project.clips.end())
        project.clips.push_back({ .file = file, .duration = length, .keep = length });
}

QDateTime whenMade(const fs::path& file)
{
    const QDateTime time = QFileInfo(text(file)).birthTime();
    return time.isValid() ? time : QDateTime::currentDateTime();
}

} // namespace

SalvageFlow::SalvageFlow(AppModel& model)
    : m_model(model)
    , m_notice(model.notices())
{
}

SalvageFlow::~SalvageFlow() = default;

void SalvageFlow::start(const std::vector<fs::path>& folders)
{
    launch(run(folders), [](const QString& description) { qCWarning(logModel) << description; });
}

QCoro::Task<> SalvageFlow::run(std::vector<fs::path> folders)
{
    const QPointer<SalvageFlow> self(this);
    const auto clips = co_await complete(folders);
    if (!self)
        co_return;
    for (const CutOff& clip : clips) {
        const QString folder = text(clip.movie.parent_path().filename());
        try {
            keep(clip);
            m_notice.tell("A recording that was cut off has been kept: "_L1 + folder);
        } catch (const std::exception& error) {
            m_notice.warn("A recording that was cut off could not be kept: "_L1 + folder + ": "_L1 + describe(error));
        }
    }
}

QFuture<std::vector<SalvageFlow::CutOff>> SalvageFlow::complete(const std::vector<fs::path>& folders)
{
    return inBackground(m_worker, [folders] {
        std::vector<CutOff> clips;
        for (const fs::path& folder : folders)
            for (const fs::path& movie : cutOffMovies(folder))
                if (auto clip = completed(movie))
                    clips.push_back(*std::move(clip));
        return clips;
    });
}

/// Nothing where it holds nothing.
std::optional<SalvageFlow::CutOff> SalvageFlow::completed(const fs::path& movie)
{
    try {
        const auto length = completeMovie(movie);
        return length ? std::optional(CutOff{ .movie = movie, .length = *length }) : std::nullopt;
    } catch (const std::exception&) {
        return CutOff{ .movie = movie, .problem = std::current_exception() };
    }
}

/// Throws what went wrong.
void SalvageFlow::keep(const CutOff& clip)
{
    if (clip.problem)
        std::rethrow_exception(clip.problem);
    if (isOpen(clip.movie.parent_path())) {
        m_model.edit(Rebuild::Yes, [&](Project& project) { append(project, clip.movie.filename().string(), clip.length); });
        m_model.transcribeMissing();
    } else {
        addToProject(clip);
    }
    forgetJournal(clip.movie);
}

/// Whatever name it was opened by.
bool SalvageFlow::isOpen(const fs::path& folder) const
{
    std::error_code gone;
    return m_model.folder() && fs::equivalent(*m_model.folder(), folder, gone);
}

/// One that is not open.
void SalvageFlow::addToProject(const CutOff& clip)
{
    const fs::path folder = clip.movie.parent_path();
    Project project =
        fs::exists(folder / projectFileName) ? loadProject(folder) : newProject(*m_model.settings(), whenMade(clip.movie));
    append(project, clip.movie.filename().string(), clip.length);
    saveProject(project, folder);
    Q_EMIT m_model.recentChanged();
}

} // namespace vantry
