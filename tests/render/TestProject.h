#pragma once

#include "TestClip.h"
#include "project/Project.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <string>

namespace vantry::test {

/// A project with its clips in a folder.
struct TestProject {
    void add(const TestClip& clip, double keep)
    {
        const auto name = "clip-" + std::to_string(project.clips.size() + 1) + ".mov";
        writeClip(folder / name, clip);
        project.clips.push_back({ .file = name, .duration = clip.frames / 30.0, .keep = keep, .transcript = {} });
    }

    TemporaryFolder folder;
    Project project;
};

} // namespace vantry::test
