#include "model/RoomText.h"

#include "capture/ClipSettings.h"

#include <QCoreApplication>

namespace vantry {

namespace {

constexpr PictureSize usualCamera{ 1280, 720 };
constexpr int minutesOfADay = 24 * 60;

QString translated(const char* text)
{
    return QCoreApplication::translate("RoomText", text);
}

} // namespace

double bytesPerSecond(const Display& display)
{
    const auto screen = clip::screenSettings({ display.width, display.height });
    const auto camera = clip::cameraSettings(usualCamera);
    return static_cast<double>(
               screen.bitRate + camera.bitRate + clip::microphoneSettings.bitRate + clip::systemSoundSettings.bitRate)
        / 8;
}

QString roomText(std::optional<std::uintmax_t> bytes, double bytesPerSecond)
{
    if (!bytes)
        return {};
    const double minutes = static_cast<double>(*bytes) / bytesPerSecond / 60;
    if (minutes >= minutesOfADay)
        return translated("More than a day fits on the disk");
    const int whole = static_cast<int>(minutes);
    if (whole < 60)
        return translated("About %1 min fit on the disk").arg(whole);
    // Tens are as exact as this is known.
    return translated("About %1 h %2 min fit on the disk").arg(whole / 60).arg(whole % 60 / 10 * 10);
}

} // namespace vantry
