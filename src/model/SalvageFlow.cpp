#include "model/SalvageFlow.h"

#include "base/Background.h"
#include "base/Log.h"
#include "media/MovieSalvage.h"
#include "model/AppModel.h"
#include "model/Coroutines.h"
#include "model/NewProject.h"
#include "model/Paths.h"
#include "model/ProjectSaver.h"
#include "project/Edits.h"
#include "project/ProjectFile.h"

#include <QCoroFuture>
#include <QFileInfo>
#include <QPointer>

#include <chrono>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr auto retryInterval = 5s;

QDateTime whenMade(const fs::path& file)
{
    const QDateTime time = QFileInfo(text(file)).birthTime();
    return time.isValid() ? time : QDateTime::currentDateTime();
}

} // namespace

SalvageFlow::SalvageFlow(AppModel& model, ProjectSaver& saver)
    : m_model(model)
    , m_saver(saver)
    , m_notice(model.notices())
{
    m_retry.setInterval(retryInterval);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, [this] { start(unfinishedFolders()); });
    // What was said of earlier recordings has been seen by then.
    connect(&m_model, &AppModel::phaseChanged, this, [this] {
        if (m_model.phase().isCountdown())
            m_notice.clear();
    });
}

SalvageFlow::~SalvageFlow() = default;

void SalvageFlow::start(const std::vector<fs::path>& folders)
{
    launch(run(folders), [](const QString& description) { qCWarning(logModel) << description; });
}

QCoro::Task<> SalvageFlow::run(std::vector<fs::path> folders)
{
    const QPointer<SalvageFlow> self(this);
    const auto clips = co_await completeAll(folders);
    for (const CutOff& clip : clips) {
        if (!self)
            co_return;
        co_await keep(clip);
    }
}

QFuture<std::vector<SalvageFlow::CutOff>> SalvageFlow::completeAll(const std::vector<fs::path>& folders)
{
    return inBackground(m_worker, [folders] {
        std::vector<CutOff> clips;
        for (const fs::path& folder : folders)
            for (const fs::path& movie : cutOffMovies(folder))
                clips.push_back(completed(movie));
        return clips;
    });
}

QFuture<SalvageFlow::CutOff> SalvageFlow::completeOne(const fs::path& movie)
{
    return inBackground(m_worker, [movie] { return completed(movie); });
}

SalvageFlow::CutOff SalvageFlow::completed(const fs::path& movie)
{
    try {
        return { .movie = movie, .length = completeMovie(movie) };
    } catch (const std::exception&) {
        return { .movie = movie, .problem = std::current_exception() };
    }
}

/// What is recorded now lies at the times that it has in the project as it is.
QCoro::Task<> SalvageFlow::keep(CutOff clip)
{
    const QPointer<SalvageFlow> self(this);
    while (self && !m_model.isIdle())
        co_await nextEmission(&m_model, &AppModel::phaseChanged);
    if (!self)
        co_return;
    const QString folder = text(clip.movie.parent_path().filename());
    try {
        if (clip.problem)
            std::rethrow_exception(clip.problem);
        m_unfinished.erase(clip.movie);
        // Where that cannot be saved, whoever tries it again says so.
        if (clip.length && co_await put(clip) && self)
            m_notice.tell("A recording that was cut off has been kept: "_L1 + folder);
    } catch (const std::exception& error) {
        m_notice.warn("A recording that was cut off could not be kept: "_L1 + folder + ": "_L1 + describe(error));
        if (m_unfinished.contains(clip.movie))
            m_retry.start();
    }
}

QFuture<bool> SalvageFlow::put(const CutOff& clip)
{
    if (!isOpen(clip.movie.parent_path()))
        return addToClosedProject(clip);
    const auto saved = m_model.addClip(Rebuild::Yes, clip.movie.filename().string(), *clip.length);
    m_model.transcribeMissing();
    return saved;
}

/// Whatever name it was opened by.
bool SalvageFlow::isOpen(const fs::path& folder) const
{
    std::error_code gone;
    return m_model.folder() && fs::equivalent(*m_model.folder(), folder, gone);
}

/// The newest there is of it, or a new one.
Project SalvageFlow::closedProject(const CutOff& clip) const
{
    const fs::path folder = clip.movie.parent_path();
    if (const auto unsaved = m_saver.unsaved(folder))
        return *unsaved;
    return fs::exists(folder / projectFileName) ? loadProject(folder) : newProject(*m_model.settings(), whenMade(clip.movie));
}

QFuture<bool> SalvageFlow::addToClosedProject(const CutOff& clip)
{
    const fs::path folder = clip.movie.parent_path();
    const auto project = std::make_shared<Project>(closedProject(clip));
    append(*project, clip.movie.filename().string(), *clip.length);
    return m_saver.save(project, folder, { clip.movie }).then(this, [this](bool isSaved) {
        Q_EMIT m_model.recentChanged();
        return isSaved;
    });
}

QCoro::Task<std::optional<double>> SalvageFlow::complete(fs::path movie)
{
    const QPointer<SalvageFlow> self(this);
    const CutOff clip = co_await completeOne(movie);
    if (self && clip.problem) {
        m_unfinished.insert(movie);
        m_retry.start();
    }
    if (clip.problem)
        std::rethrow_exception(clip.problem);
    co_return clip.length;
}

QCoro::Task<bool> SalvageFlow::retry()
{
    const QPointer<SalvageFlow> self(this);
    co_await run(unfinishedFolders());
    co_return !self || m_unfinished.empty();
}

/// But for what somebody has removed.
std::vector<fs::path> SalvageFlow::unfinishedFolders()
{
    std::erase_if(m_unfinished, [](const fs::path& movie) { return !fs::exists(movie); });
    std::set<fs::path> folders;
    for (const fs::path& movie : m_unfinished)
        folders.insert(movie.parent_path());
    return { folders.begin(), folders.end() };
}

} // namespace vantry
