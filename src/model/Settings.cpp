#include "model/Settings.h"

#include "ai/Options.h"
#include "model/ChangeTo.h"
#include "model/CropText.h"
#include "model/Paths.h"
#include "model/ScreenAreas.h"
#include "project/EnumNames.h"
#include "render/Exporter.h"

#include <QStandardPaths>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

/// Also one with commas, which the file takes for a list unless it is quoted.
QString wholeText(const QVariant& stored)
{
    return stored.toStringList().join(u',');
}

template <typename Enum>
Enum named(const QVariant& stored, Enum otherwise)
{
    return valueNamed<Enum>(stored.toString().toStdString()).value_or(otherwise);
}

template <typename Enum>
QString nameText(Enum value)
{
    const std::string_view name = nameOf(value);
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

template <typename Integer>
Integer integer(const QVariant& stored, Integer otherwise)
{
    bool isNumber = false;
    const qlonglong value = stored.toString().toLongLong(&isNumber);
    const bool fits = value >= std::numeric_limits<Integer>::min() && value <= std::numeric_limits<Integer>::max();
    return isNumber && fits ? static_cast<Integer>(value) : otherwise;
}

double number(const QVariant& stored, double otherwise)
{
    bool isNumber = false;
    const double value = stored.toString().toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? value : otherwise;
}

/// One of the heights that there are; another one in the file is not offered anywhere.
int knownHeight(const QVariant& stored)
{
    const int height = integer(stored, defaultExportHeight);
    return std::ranges::count(exportHeights, height) ? height : defaultExportHeight;
}

bool boolean(const QVariant& stored, bool otherwise)
{
    const QString text = stored.toString();
    if (text == "true"_L1 || text == "1"_L1)
        return true;
    if (text == "false"_L1 || text == "0"_L1)
        return false;
    return otherwise;
}

QString panelPlaceKey(std::uint32_t display)
{
    return u"panel/"_s + QString::number(display);
}

QString areasKey(std::uint32_t displayID)
{
    return u"areas-%1"_s.arg(displayID);
}

} // namespace

std::filesystem::path Settings::defaultFile()
{
    return toPath(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)) / "vantry" / "settings.ini";
}

Settings::Settings(const std::filesystem::path& file)
    : m_file(text(file), QSettings::IniFormat)
    , m_displayID(integer<std::uint32_t>(m_file.value("displayID"), 0))
    , m_cameraID(m_file.value("cameraID").toString())
    , m_micID(m_file.value("micID").toString())
    , m_chosenCameraID(m_file.value("chosenCameraID", m_cameraID).toString())
    , m_chosenMicID(m_file.value("chosenMicID", m_micID).toString())
    , m_setupLayout(named(m_file.value("layout"), Layout::camera))
    , m_setupCorner(named(m_file.value("corner"), Corner::bottomRight))
    , m_setupBubble(number(m_file.value("bubble"), 0.26))
    , m_exportHeight(knownHeight(m_file.value("exportHeight")))
    , m_systemAudio(boolean(m_file.value("systemAudio"), true))
    , m_setupBlur(boolean(m_file.value("blur"), false))
    // A list is what the file's format makes of a rectangle that was typed in without quotes.
    , m_setupCrop(parseCrop(m_file.value("crop").toStringList().join(", "_L1)))
    , m_reduceMotion(boolean(m_file.value("reduceMotion"), false))
    , m_model(wholeText(m_file.value("model", AI::defaultModel)))
    , m_tokensPath(wholeText(m_file.value("tokensPath", AI::defaultTokensPath)))
    , m_speechLocale(m_file.value("speechLocale", u"en-US"_s).toString())
    , m_speechModel(named(m_file.value("speechModel"), SpeechModelSize::base))
    , m_panelFolded(boolean(m_file.value("panelFolded"), false))
{
}

void Settings::setDisplayID(std::uint32_t value)
{
    m_file.setValue("displayID", value);
    if (changeTo(m_displayID, value))
        Q_EMIT displayIDChanged();
}

void Settings::setCameraID(const QString& value)
{
    const bool isNew = changeTo(m_chosenCameraID, value);
    useCamera(value);
    if (isNew)
        Q_EMIT chosenDevicesChanged();
}

void Settings::setMicID(const QString& value)
{
    const bool isNew = changeTo(m_chosenMicID, value);
    useMic(value);
    if (isNew)
        Q_EMIT chosenDevicesChanged();
}

/// A file that knows of no choice yet had only what was used: that is remembered before it is overwritten.
void Settings::useCamera(const QString& value)
{
    m_file.setValue("chosenCameraID", m_chosenCameraID);
    m_file.setValue("cameraID", value);
    if (changeTo(m_cameraID, value))
        Q_EMIT cameraIDChanged();
}

void Settings::useMic(const QString& value)
{
    m_file.setValue("chosenMicID", m_chosenMicID);
    m_file.setValue("micID", value);
    if (changeTo(m_micID, value))
        Q_EMIT micIDChanged();
}

void Settings::setSetupLayout(Layout value)
{
    m_file.setValue("layout", nameText(value));
    if (changeTo(m_setupLayout, value))
        Q_EMIT setupLayoutChanged();
}

void Settings::setSetupCorner(Corner value)
{
    m_file.setValue("corner", nameText(value));
    if (changeTo(m_setupCorner, value))
        Q_EMIT setupCornerChanged();
}

void Settings::setSetupBubble(double value)
{
    m_file.setValue("bubble", value);
    if (changeTo(m_setupBubble, value))
        Q_EMIT setupBubbleChanged();
}

void Settings::setExportHeight(int value)
{
    m_file.setValue("exportHeight", value);
    if (changeTo(m_exportHeight, value))
        Q_EMIT exportHeightChanged();
}

void Settings::setSystemAudio(bool value)
{
    m_file.setValue("systemAudio", value);
    if (changeTo(m_systemAudio, value))
        Q_EMIT systemAudioChanged();
}

void Settings::setSetupBlur(bool value)
{
    m_file.setValue("blur", value);
    if (changeTo(m_setupBlur, value))
        Q_EMIT setupBlurChanged();
}

void Settings::setSetupCrop(const std::optional<CropRect>& value)
{
    m_file.setValue("crop", value ? QVariant(cropText(*value)) : QVariant());
    if (changeTo(m_setupCrop, value))
        Q_EMIT setupCropChanged();
}

void Settings::setReduceMotion(bool value)
{
    m_file.setValue("reduceMotion", value);
    if (changeTo(m_reduceMotion, value))
        Q_EMIT reduceMotionChanged();
}

QVariant Settings::setupCropValue() const
{
    return cropValue(m_setupCrop);
}

void Settings::setSetupCropValue(const QVariant& value)
{
    setSetupCrop(cropOf(value));
}

std::vector<ChosenArea> Settings::chosenAreas(std::uint32_t displayID) const
{
    std::vector<ChosenArea> areas;
    for (const QString& text : m_file.value(areasKey(displayID)).toStringList()) {
        // "1920x1080 {{x, y}, {width, height}}"
        const QStringList size = text.section(u' ', 0, 0).split(u'x');
        const auto crop = parseCrop(text.section(u' ', 1));
        const QSize screen(size.value(0).toInt(), size.value(1).toInt());
        if (crop && !screen.isEmpty())
            areas.push_back({ *crop, screen });
    }
    return areas;
}

void Settings::setChosenAreas(std::uint32_t displayID, const std::vector<ChosenArea>& areas)
{
    QStringList texts;
    for (const auto& [crop, screen] : areas)
        texts.append(u"%1x%2 "_s.arg(screen.width()).arg(screen.height()) + cropText(crop));
    m_file.setValue(areasKey(displayID), texts);
}

void Settings::setModel(const QString& value)
{
    m_file.setValue("model", value);
    if (changeTo(m_model, value))
        Q_EMIT modelChanged();
}

void Settings::setTokensPath(const QString& value)
{
    m_file.setValue("tokensPath", value);
    if (changeTo(m_tokensPath, value))
        Q_EMIT tokensPathChanged();
}

void Settings::setSpeechLocale(const QString& value)
{
    m_file.setValue("speechLocale", value);
    if (changeTo(m_speechLocale, value))
        Q_EMIT speechLocaleChanged();
}

void Settings::setSpeechModel(SpeechModelSize value)
{
    m_file.setValue("speechModel", nameText(value));
    if (changeTo(m_speechModel, value))
        Q_EMIT speechModelChanged();
}

void Settings::setPanelFolded(bool value)
{
    m_file.setValue("panelFolded", value);
    if (changeTo(m_panelFolded, value))
        Q_EMIT panelFoldedChanged();
}

std::optional<QPoint> Settings::panelPlace(std::uint32_t display) const
{
    const QStringList numbers = m_file.value(panelPlaceKey(display)).toString().split(u' ');
    bool isX = false, isY = false;
    const QPoint place(numbers.first().toInt(&isX), numbers.last().toInt(&isY));
    return numbers.size() == 2 && isX && isY ? std::optional(place) : std::nullopt;
}

void Settings::setPanelPlace(std::uint32_t display, QPoint value)
{
    m_file.setValue(panelPlaceKey(display), QString::number(value.x()) + u' ' + QString::number(value.y()));
}

} // namespace vantry
