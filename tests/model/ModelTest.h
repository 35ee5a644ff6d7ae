#pragma once

#include "model/AppModel.h"
#include "project/ProjectFile.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vantry::test {

/// A test with a root of projects of its own.
class ProjectsTest : public EventLoopTest {
protected:
    /// A folder that holds a project of this many seconds, in one clip whose movie does not exist.
    std::filesystem::path writeProject(const std::string& name, double length = 10)
    {
        const auto folder = m_root / name;
        std::filesystem::create_directories(folder);
        Project project{
            .name = name, .clips = { { .file = "clip-1.mov", .duration = length, .keep = length } }, .layouts = { {} }
        };
        saveProject(project, folder);
        return folder;
    }

    /// Neither a model for speech nor a way to one.
    Transcriber::Options withoutSpeechModel() const { return { .models = m_folder / "models", .source = "http://127.0.0.1:1/" }; }

    const TemporaryFolder m_folder;
    const std::filesystem::path m_root = m_folder / "Videos/Vantry";
};

/// The same with a model that has settings of its own.
class ModelTest : public ProjectsTest {
protected:
    explicit ModelTest(Transcribe transcribe = Transcribe::OnRequest)
        : m_transcribe(transcribe)
    {
    }

    std::string alert() const { return m_model.alert().value_or(QString()).toStdString(); }

    /// The open project as it is on the disk once everything is saved.
    Project onDisk() { return m_model.saved().result() ? loadProject(*m_model.folder()) : Project(); }

    const Transcribe m_transcribe;
    std::vector<std::filesystem::path> m_revealed;
    AppModel m_model{ {
        .root = m_root,
        .settingsFile = m_folder / "settings.ini",
        .reveal = [this](const std::filesystem::path& file) { m_revealed.push_back(file); },
        .transcribe = m_transcribe,
        .speech = withoutSpeechModel(),
    } };
};

} // namespace vantry::test
