#include "media/TrackInfo.h"
#include "model/storm/Commands.h"
#include "project/Edits.h"
#include "project/ProjectFile.h"
#include "project/Timeline.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace vantry::storm {

namespace fs = std::filesystem;

namespace {

void expect(bool holds, const std::string& otherwise)
{
    if (!holds)
        throw std::runtime_error(otherwise);
}

/// Clips follow each other without a gap, each within its movie, and layouts are in their order.
void checkTimes(const Project& project, const std::string& where)
{
    double end = 0;
    for (const Clip& clip : project.clips) {
        // One that was stopped at once may be shorter than what a cut leaves.
        const bool isMeant = clip.keep > shortestKeptClip || (clip.keep > 0 && clip.keep == clip.duration);
        expect(isMeant && clip.keep <= clip.duration + 1e-9,
            where + ": " + clip.file + " keeps " + std::to_string(clip.keep) + " s of " + std::to_string(clip.duration));
        end += clip.keep;
    }
    expect(std::abs(totalLength(project) - end) < 1e-9, where + ": lengths do not add up");
    expect(std::ranges::is_sorted(project.layouts, {}, &LayoutEvent::time) && !project.layouts.empty(),
        where + ": layouts out of order");
}

} // namespace

void checkFolders(const fs::path& root)
{
    std::error_code missing;
    for (const auto& folder : fs::directory_iterator(root, missing)) {
        if (!fs::exists(folder.path() / projectFileName))
            continue;
        const Project project = loadProject(folder.path());
        for (const Clip& clip : project.clips)
            expect(fs::exists(folder.path() / clip.file), clip.file + " is named and not there");
        checkTimes(project, folder.path().filename().string());
    }
}

void check(AppModel& model)
{
    checkFolders(model.root());
    expect(model.phase() != Phase::editing() || model.project(), "there is nothing to edit");
    expect(model.phase() != Phase::recording() || model.folder(), "a clip without a folder");
    if (model.project())
        checkTimes(*model.project(), "the open project");
    const auto alert = model.alert().value_or(QString()).toStdString();
    for (const char* loss : { "Could not save", "The last clip", "Could not open", "Recording stopped" })
        expect(!alert.starts_with(loss), alert);
    expect(!model.status().value_or(QString()).startsWith(QStringLiteral("A recording that was cut off could not")),
        model.status().value_or(QString()).toStdString());
    model.setAlert(std::nullopt);
}

} // namespace vantry::storm
