#pragma once

#include "capture/CaptureTrouble.h"
#include "model/Notices.h"

#include <QObject>

#include <deque>

namespace vantry {

class AppModel;
class Recorder;

/// Tells what is missing in a recording and why, each source by itself, as long as that is so; not to somebody who edits. Belongs
/// to the main thread.
class SourceNotices : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    SourceNotices(AppModel& model, Recorder& recorder);

    /// Something is wrong with the source.
    bool has(CaptureSource source) const { return !m_sources.at(static_cast<std::size_t>(source)).trouble.isEmpty(); }

private:
    struct Source {
        explicit Source(Notices& notices)
            : notice(notices)
        {
        }
        Notice notice;
        QString trouble; ///< Empty where there is none.
    };

    void set(CaptureSource source, const std::optional<std::string>& trouble);
    void show();
    void show(Source& source);

    AppModel& m_model;
    std::deque<Source> m_sources; ///< By `CaptureSource`.
};

} // namespace vantry
