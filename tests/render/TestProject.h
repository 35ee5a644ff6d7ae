#pragma once

#include "TestClip.h"
#include "media/Picture.h"
#include "project/Project.h"
#include "support/TemporaryFolder.h"

#include <cstring>
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

/// Greys from which a picture's number can be told.
inline std::uint8_t count(int frame)
{
    return static_cast<std::uint8_t>(40 + frame % 150);
}

/// The grey in the middle of a picture, -1 where there is none.
inline int shade(const Picture& picture)
{
    return picture ? picture.plane(PlaneY).row(picture.height() / 2)[picture.width() / 2] : -1;
}

inline bool areSame(const Picture& one, const Picture& other)
{
    for (const int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto a = one.plane(index), b = other.plane(index);
        for (int y = 0; y < a.height; ++y)
            if (std::memcmp(a.row(y), b.row(y), static_cast<std::size_t>(a.width)) != 0)
                return false;
    }
    return true;
}

} // namespace vantry::test
