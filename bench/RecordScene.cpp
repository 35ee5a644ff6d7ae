#include "RecordScene.h"

#include "support/Command.h"
#include "support/DeviceProgram.h"

#include <sstream>

namespace vantry::bench {

namespace {

constexpr const char* cameraProgram = DEVICE_TOOLS "/testcamera";
constexpr const char* microphoneProgram = DEVICE_TOOLS "/testmicrophone";
constexpr const char* activityProgram = BENCH_TOOLS "/vantry_screen_activity";
constexpr const char* recordProgram = BENCH_TOOLS "/vantry_record_once";
constexpr const char* tones = "aevalsrc=0.25*sin(2*PI*700*t)|0.25*sin(2*PI*1100*t)";

std::string size(int width, int height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

} // namespace

RecordScene::RecordScene(Flashes flashes)
    : m_cameraName(test::uniqueName("camera"))
    , m_camera({ cameraProgram, m_cameraName, m_cameraName, cameraFormat, size(cameraWidth, cameraHeight),
          flashes == Flashes::WholeSeconds ? "seconds" : "" })
    , m_activity({ activityProgram })
    , m_player({ "ffmpeg", "-nostdin", "-loglevel", "error", "-f", "lavfi", "-i", tones, "-f", "pulse", "tones" })
{
}

ClickMicrophone::ClickMicrophone()
    : m_name(test::uniqueName("microphone"))
    , m_program({ microphoneProgram, m_name, m_name, "clicks" })
{
}

RecordFigures recordOnce(
    const std::filesystem::path& file, int seconds, const std::string& microphone, const std::optional<std::string>& camera)
{
    std::istringstream output(test::runCommand(std::string(recordProgram) + " '" + file.string() + "' " + std::to_string(seconds)
        + " " + microphone + " " + camera.value_or("")));
    RecordFigures figures;
    output >> figures.processorPercent >> figures.droppedPercent;
    return figures;
}

} // namespace vantry::bench
