#include "model/FieldBinding.h"

#include "model/ChangeTo.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace vantry {

namespace {

QVariant toVariant(const std::string& text)
{
    return QString::fromStdString(text);
}

QVariant toVariant(double number)
{
    return number;
}

void assign(std::string& text, const QVariant& value)
{
    text = value.toString().toStdString();
}

void assign(double& number, const QVariant& value)
{
    bool isNumber = false;
    const double read = value.toDouble(&isNumber);
    if (isNumber && std::isfinite(read))
        number = read;
}

/// `find` gives a pointer to the field in a project, or null where it has none. A writable project for a writable field.
template <typename Find>
FieldBinding::Access access(Find find)
{
    using Value = std::remove_cvref_t<decltype(*find(std::declval<Project&>()))>;
    return {
        .read =
            [find](const Project* project) {
                const Value* field = project ? find(*project) : nullptr;
                return toVariant(field ? *field : Value());
            },
        .write =
            [find](Project& project, const QVariant& value) {
                if (Value* field = find(project))
                    assign(*field, value);
            },
    };
}

FieldBinding::Access overlayAccess(const Uuid& id, double Overlay::*field)
{
    return access([id, field](auto& project) {
        const auto overlay = std::ranges::find(project.overlays, id, &Overlay::id);
        return overlay == project.overlays.end() ? nullptr : &(*overlay.*field);
    });
}

} // namespace

FieldBinding::FieldBinding(AppModel& model, Access access, Rebuild rebuild)
    : m_model(&model)
    , m_access(std::move(access))
    , m_rebuild(rebuild)
{
    connect(&model, &AppModel::projectChanged, this, &FieldBinding::refresh);
    refresh();
}

void FieldBinding::setValue(const QVariant& value)
{
    if (m_model)
        m_model->edit(m_rebuild, [&](Project& project) { m_access.write(project, value); });
}

void FieldBinding::refresh()
{
    const auto& project = m_model->project();
    if (changeTo(m_value, m_access.read(project ? &*project : nullptr)))
        Q_EMIT valueChanged();
}

FieldBinding::Access accessTo(ProjectField::Kind field)
{
    switch (field) {
    case ProjectField::Name:
        return access([](auto& project) { return &project.name; });
    case ProjectField::BubbleSize:
        return access([](auto& project) { return &project.bubbleSize; });
    case ProjectField::YouTubeTitle:
        return access([](auto& project) { return &project.youtube.title; });
    case ProjectField::YouTubeDescription:
        return access([](auto& project) { return &project.youtube.description; });
    case ProjectField::YouTubeTags:
        break;
    }
    return access([](auto& project) { return &project.youtube.tags; });
}

FieldBinding::Access accessTo(OverlayField::Kind field, const Uuid& overlay)
{
    switch (field) {
    case OverlayField::Start:
        return overlayAccess(overlay, &Overlay::start);
    case OverlayField::Duration:
        return overlayAccess(overlay, &Overlay::duration);
    case OverlayField::X:
        return overlayAccess(overlay, &Overlay::x);
    case OverlayField::Y:
        return overlayAccess(overlay, &Overlay::y);
    case OverlayField::Width:
        break;
    }
    return overlayAccess(overlay, &Overlay::width);
}

} // namespace vantry
