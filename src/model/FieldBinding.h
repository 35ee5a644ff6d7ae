#pragma once

#include "model/AppModel.h"
#include "model/ProjectFields.h"

#include <QObject>
#include <QPointer>
#include <QVariant>

#include <functional>

namespace vantry {

/// One field of the open project, for a control that shows and changes it. Reads the field as it is, writes it with an edit. What
/// is not there reads as empty or 0, and writing it changes nothing. Belongs to the main thread and to whoever asked for it.
class FieldBinding : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged)

public:
    /// How a field is reached: in a project that may be absent, and in the copy that an edit changes.
    struct Access {
        std::function<QVariant(const Project*)> read;
        std::function<void(Project&, const QVariant&)> write;
    };

    FieldBinding(AppModel& model, Access access, Rebuild rebuild);

    QVariant value() const { return m_value; }
    void setValue(const QVariant& value);

Q_SIGNALS:
    void valueChanged();

private:
    void refresh();

    const QPointer<AppModel> m_model;
    const Access m_access;
    const Rebuild m_rebuild;
    QVariant m_value;
};

/// How views reach the fields that they are bound to.
FieldBinding::Access accessTo(ProjectField::Kind);

/// Of the first overlay with that id.
FieldBinding::Access accessTo(OverlayField::Kind, const Uuid& overlay);

} // namespace vantry
