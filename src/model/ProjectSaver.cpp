#include "model/ProjectSaver.h"

#include "base/Background.h"
#include "media/MovieSalvage.h"
#include "model/Coroutines.h"
#include "model/Paths.h"
#include "project/ProjectFile.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr auto retryInterval = 3s;

} // namespace

ProjectSaver::ProjectSaver(Notices& notices)
    : m_notice(notices)
{
    m_retry.setInterval(retryInterval);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &ProjectSaver::postAll);
}

ProjectSaver::~ProjectSaver()
{
    postAll();
    m_worker.finish();
}

QFuture<bool> ProjectSaver::save(std::shared_ptr<const Project> project, const fs::path& folder, std::vector<fs::path> clips)
{
    const auto promise = std::make_shared<QPromise<bool>>();
    promise->start();
    const std::lock_guard guard(m_mutex);
    auto state = find(folder);
    if (state == m_states.end())
        state = m_states.emplace(folder, Unsaved()).first;
    Unsaved& unsaved = state->second;
    unsaved.project = std::move(project);
    unsaved.number = ++m_number;
    std::ranges::move(clips, std::back_inserter(unsaved.clips));
    unsaved.waiting.push_back(promise);
    post(state, Attempt::First);
    return promise->future();
}

/// By whatever name the folder is called: an older state that is tried again later must not follow a newer one.
ProjectSaver::States::iterator ProjectSaver::find(const fs::path& folder)
{
    const auto found = m_states.find(folder);
    return found != m_states.end() ? found : std::ranges::find_if(m_states, [&folder](const auto& state) {
        std::error_code gone;
        return fs::equivalent(state.first, folder, gone);
    });
}

void ProjectSaver::post(States::iterator state, Attempt attempt)
{
    if (!std::exchange(state->second.isPosted, true))
        m_worker.post([this, folder = state->first, attempt] { write(folder, attempt); });
}

void ProjectSaver::postAll()
{
    const std::lock_guard guard(m_mutex);
    for (auto state = m_states.begin(); state != m_states.end(); ++state)
        post(state, Attempt::Again);
}

/// On the worker.
void ProjectSaver::write(const fs::path& folder, Attempt attempt)
{
    Unsaved taken;
    {
        const std::lock_guard guard(m_mutex);
        const auto state = m_states.find(folder);
        if (state == m_states.end())
            return; // Given up.
        Unsaved& unsaved = state->second;
        unsaved.isPosted = false;
        taken = { unsaved.project, unsaved.number, std::exchange(unsaved.clips, {}), std::exchange(unsaved.waiting, {}) };
    }
    QString failure;
    bool isSaved = false;
    try {
        saveProject(*taken.project, folder);
        isSaved = true;
        std::ranges::for_each(taken.clips, forgetJournal);
    } catch (const std::exception& error) {
        failure = describe(error);
    }
    if (!settle(folder, taken, failure))
        failure.clear();
    QMetaObject::invokeMethod(
        this, [this, folder, failure, attempt] { report(folder, failure, attempt); }, Qt::QueuedConnection);
    for (const auto& promise : taken.waiting) {
        promise->addResult(isSaved);
        promise->finish();
    }
}

/// What has become newer meanwhile is still to be written. False when nobody wants the folder any more.
bool ProjectSaver::settle(const fs::path& folder, Unsaved& written, const QString& failure)
{
    const std::lock_guard guard(m_mutex);
    const auto state = m_states.find(folder);
    if (state == m_states.end())
        return false;
    state->second.failure = failure;
    if (!failure.isEmpty())
        std::ranges::move(written.clips, std::back_inserter(state->second.clips));
    else if (state->second.number == written.number)
        m_states.erase(state);
    return true;
}

void ProjectSaver::report(const fs::path& folder, const QString& failure, Attempt attempt)
{
    if (problem().isEmpty()) {
        m_notice.clear();
        m_retry.stop();
    } else if (!failure.isEmpty()) {
        m_notice.warn(
            "A recording is not saved yet: "_L1 + text(folder.filename()) + ": "_L1 + failure + ". It is tried again."_L1);
        m_retry.start();
    }
    if (!failure.isEmpty() && attempt == Attempt::First)
        Q_EMIT failed(failure);
}

QString ProjectSaver::problem() const
{
    const std::lock_guard guard(m_mutex);
    const auto state = std::ranges::find_if(m_states, [](const auto& entry) { return !entry.second.failure.isEmpty(); });
    return state == m_states.end() ? QString() : state->second.failure;
}

std::shared_ptr<const Project> ProjectSaver::unsaved(const fs::path& folder) const
{
    const std::lock_guard guard(m_mutex);
    const auto state = const_cast<ProjectSaver*>(this)->find(folder);
    return state == m_states.end() ? nullptr : state->second.project;
}

QFuture<bool> ProjectSaver::flush()
{
    postAll();
    return inBackground(m_worker, [this] {
        const std::lock_guard guard(m_mutex);
        return m_states.empty();
    });
}

void ProjectSaver::drop(const fs::path& folder)
{
    std::vector<std::shared_ptr<QPromise<bool>>> waiting;
    {
        const std::lock_guard guard(m_mutex);
        const auto state = find(folder);
        if (state == m_states.end())
            return;
        waiting = std::move(state->second.waiting);
        m_states.erase(state);
    }
    for (const auto& promise : waiting) {
        promise->addResult(false);
        promise->finish();
    }
}

} // namespace vantry
