#include "model/SourceNotices.h"

#include "capture/Recorder.h"
#include "model/AppModel.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>

namespace vantry {

/// The recorder speaks on a thread of its own, and may still do so when this is gone.
SourceNotices::SourceNotices(AppModel& model, Recorder& recorder)
    : m_model(model)
{
    for (std::size_t i = 0; i < captureSourceCount; ++i)
        m_sources.emplace_back(model.notices());
    connect(&model, &AppModel::phaseChanged, this, [this] { show(); });
    recorder.setOnTrouble([self = QPointer(this)](CaptureSource source, const std::optional<std::string>& trouble) {
        QMetaObject::invokeMethod(
            qApp,
            [self, source, trouble] {
                if (self)
                    self->set(source, trouble);
            },
            Qt::QueuedConnection);
    });
}

void SourceNotices::set(CaptureSource source, const std::optional<std::string>& trouble)
{
    Source& told = m_sources.at(static_cast<std::size_t>(source));
    told.trouble = QString::fromStdString(trouble.value_or(std::string()));
    show(told);
}

void SourceNotices::show()
{
    for (Source& source : m_sources)
        show(source);
}

void SourceNotices::show(Source& source)
{
    source.notice.warn(m_model.phase() == Phase::editing() ? QString() : source.trouble);
}

} // namespace vantry
