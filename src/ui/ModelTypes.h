#pragma once

#include "model/AppModel.h"
#include "model/AreaSelection.h"
#include "model/BrowserPageSearch.h"
#include "model/CaptureDevices.h"
#include "model/FieldBinding.h"
#include "model/LayoutPlacement.h"
#include "model/PressesElsewhere.h"
#include "model/PreviewFlow.h"
#include "model/QuitFlow.h"
#include "model/Readiness.h"
#include "model/RecentAreas.h"
#include "model/RoomLeft.h"
#include "model/ScreenPreview.h"

#include <QtQml/qqml.h>

namespace vantry {

// The names under which the views know the model, which knows nothing of views itself.

struct AppModelType {
    Q_GADGET
    QML_FOREIGN(vantry::AppModel)
    QML_NAMED_ELEMENT(AppModel)
    QML_UNCREATABLE("The application makes the one model.")
};

struct SettingsType {
    Q_GADGET
    QML_FOREIGN(vantry::Settings)
    QML_NAMED_ELEMENT(Settings)
    QML_UNCREATABLE("They belong to the model.")
};

struct CaptureDevicesType {
    Q_GADGET
    QML_FOREIGN(vantry::CaptureDevices)
    QML_NAMED_ELEMENT(CaptureDevices)
    QML_UNCREATABLE("They belong to the model.")
};

struct CameraMirrorType {
    Q_GADGET
    QML_FOREIGN(vantry::CameraMirror)
    QML_NAMED_ELEMENT(CameraMirror)
    QML_UNCREATABLE("It belongs to the devices.")
};

struct PreviewType {
    Q_GADGET
    QML_FOREIGN(vantry::PreviewFlow)
    QML_NAMED_ELEMENT(Preview)
    QML_UNCREATABLE("It belongs to the model.")
};

struct QuitType {
    Q_GADGET
    QML_FOREIGN(vantry::QuitFlow)
    QML_NAMED_ELEMENT(Quit)
    QML_UNCREATABLE("It belongs to the model.")
};

struct ReadinessType {
    Q_GADGET
    QML_FOREIGN(vantry::Readiness)
    QML_NAMED_ELEMENT(Readiness)
    QML_UNCREATABLE("It belongs to the model.")
};

struct LayoutPlacementType {
    Q_GADGET
    QML_FOREIGN(vantry::LayoutPlacement)
    QML_NAMED_ELEMENT(LayoutPlacement)
};

struct ScreenPreviewType {
    Q_GADGET
    QML_FOREIGN(vantry::ScreenPreview)
    QML_NAMED_ELEMENT(ScreenPreview)
    QML_UNCREATABLE("It belongs to the model.")
};

struct BrowserPageSearchType {
    Q_GADGET
    QML_FOREIGN(vantry::BrowserPageSearch)
    QML_NAMED_ELEMENT(BrowserPageSearch)
    QML_UNCREATABLE("It belongs to the model.")
};

struct RecentAreasType {
    Q_GADGET
    QML_FOREIGN(vantry::RecentAreas)
    QML_NAMED_ELEMENT(RecentAreas)
    QML_UNCREATABLE("They belong to the model.")
};

struct AreaSelectionType {
    Q_GADGET
    QML_FOREIGN(vantry::AreaSelection)
    QML_NAMED_ELEMENT(AreaSelection)
};

struct FieldBindingType {
    Q_GADGET
    QML_FOREIGN(vantry::FieldBinding)
    QML_NAMED_ELEMENT(FieldBinding)
    QML_UNCREATABLE("The model makes them.")
};

struct RoomLeftType {
    Q_GADGET
    QML_FOREIGN(vantry::RoomLeft)
    QML_NAMED_ELEMENT(RoomLeft)
};

struct PressesElsewhereType {
    Q_GADGET
    QML_FOREIGN(vantry::PressesElsewhere)
    QML_NAMED_ELEMENT(PressesElsewhere)
};

namespace PhaseType {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(vantry::Phase)
QML_NAMED_ELEMENT(Phase)
} // namespace PhaseType

namespace LayoutKindType {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(vantry::LayoutKind)
QML_NAMED_ELEMENT(LayoutKind)
} // namespace LayoutKindType

namespace CornerKindType {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(vantry::CornerKind)
QML_NAMED_ELEMENT(CornerKind)
} // namespace CornerKindType

namespace ProjectFieldType {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(vantry::ProjectField)
QML_NAMED_ELEMENT(ProjectField)
} // namespace ProjectFieldType

namespace OverlayFieldType {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(vantry::OverlayField)
QML_NAMED_ELEMENT(OverlayField)
} // namespace OverlayFieldType

} // namespace vantry
