#pragma once

#include "support/XServer.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vantry::bench {

/// What somebody records: a screen on which somebody types while a log scrolls, a camera with 1280x720 pictures, 30 a second, and a
/// program that plays a tone. All of it is made by other processes.
class RecordScene {
public:
    /// When the camera shows its flash.
    enum class Flashes {
        AnySecond, ///< Once a second.
        WholeSeconds, ///< At the whole seconds of the clock.
    };

    explicit RecordScene(Flashes flashes = Flashes::AnySecond);

    const std::string& camera() const { return m_cameraName; }

    static constexpr int cameraWidth = 1280;
    static constexpr int cameraHeight = 720;
    static constexpr const char* cameraFormat = "YUY2";

private:
    const std::string m_cameraName;
    test::Program m_camera;
    test::Program m_activity;
    test::Program m_player;
};

/// A microphone that hears one click at each whole second of the clock, and apart from that nothing.
class ClickMicrophone {
public:
    ClickMicrophone();

    const std::string& name() const { return m_name; }

private:
    const std::string m_name;
    test::Program m_program;
};

struct RecordFigures {
    double processorPercent = 0; ///< 100 is one core.
    double droppedPercent = 0; ///< Of the track that fared worst.
};

/// Records in a process of its own.
RecordFigures recordOnce(
    const std::filesystem::path& file, int seconds, const std::string& microphone, const std::optional<std::string>& camera);

} // namespace vantry::bench
