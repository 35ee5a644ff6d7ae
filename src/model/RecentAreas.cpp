#include "model/RecentAreas.h"

#include "model/AreaPixels.h"
#include "model/ChangeTo.h"
#include "model/ScreenAreas.h"
#include "model/Settings.h"

#include <QVariantMap>

#include <algorithm>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

/// One more than are offered: what the one without menu bar leaves out.
constexpr std::size_t mostRemembered = 4;
constexpr qsizetype mostOffered = 3;

QString sizeText(int width, int height)
{
    return u"%1 × %2 px"_s.arg(width).arg(height);
}

QString sizeOn(const CropRect& crop, const Display& display)
{
    const PixelRect area = AreaPixels(display.width, display.height).snapped(crop);
    return sizeText(area.width, area.height);
}

} // namespace

RecentAreas::RecentAreas(Settings& settings, ChosenDisplay display)
    : m_settings(settings)
    , m_display(std::move(display))
{
}

void RecentAreas::refresh()
{
    QVariantList areas;
    if (const auto display = m_display())
        for (const auto& [crop, screen] : m_settings.chosenAreas(display->id))
            if (areaKind(crop) == AreaKind::Custom && areas.size() < mostOffered)
                areas.append(QVariantMap{ { u"crop"_s, cropValue(crop) }, { u"text"_s, sizeOn(crop, *display) } });
    if (changeTo(m_areas, areas))
        Q_EMIT changed();
}

void RecentAreas::remember(const QVariant& value)
{
    const auto crop = cropOf(value);
    const auto display = m_display();
    if (!crop || !display)
        return;
    auto areas = m_settings.chosenAreas(display->id);
    std::erase_if(areas, [&](const ChosenArea& area) { return area.crop == *crop; });
    areas.insert(areas.begin(), { *crop, QSize(display->width, display->height) });
    if (areas.size() > mostRemembered)
        areas.resize(mostRemembered);
    m_settings.setChosenAreas(display->id, areas);
}

QString RecentAreas::sizeNote(const QVariant& value) const
{
    const auto crop = cropOf(value);
    const auto display = m_display();
    if (!crop || !display)
        return {};
    const auto areas = m_settings.chosenAreas(display->id);
    const auto chosen = std::ranges::find(areas, *crop, &ChosenArea::crop);
    if (chosen == areas.end() || chosen->screen == QSize(display->width, display->height))
        return {};
    return tr("The screen had %1 when this area was chosen. The area keeps its place and has %2 now.")
        .arg(sizeText(chosen->screen.width(), chosen->screen.height()), sizeOn(*crop, *display));
}

} // namespace vantry
