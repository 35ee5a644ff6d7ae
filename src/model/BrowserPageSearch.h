#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "base/Worker.h"
#include "platform/AccessibilitySwitch.h"
#include "platform/Displays.h"

#include <QCoroTask>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>
#include <stop_token>

namespace vantry {

/// Looks for the page of the front browser window on the chosen display, on a thread of its own. For that the user has to allow
/// once that we look at other programs' windows; that lasts until the program ends. Belongs to the main thread.
class BrowserPageSearch : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isSearching READ isSearching NOTIFY changed)

    /// For the user: why nothing was found. Empty when there is nothing to say.
    Q_PROPERTY(QString note READ note NOTIFY changed)

    /// What the note asks to be allowed can be allowed here.
    Q_PROPERTY(bool asksToAllow READ asksToAllow NOTIFY changed)

public:
    using ChosenDisplay = std::function<std::optional<Display>()>;

    explicit BrowserPageSearch(ChosenDisplay display);
    ~BrowserPageSearch() override;

    bool isSearching() const { return m_isSearching; }
    const QString& note() const { return m_note; }
    bool asksToAllow() const { return m_asksToAllow; }

    /// Ends with `found` or with a note. A search that is under way is given up.
    Q_INVOKABLE void find();

    /// What the user was asked for.
    Q_INVOKABLE void allow();

    /// Gives up a search that is under way, and takes the note back.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();
    void found(const QVariant& crop);

private:
    struct State {
        bool isSearching = false;
        QString note{};
        bool asksToAllow = false;
    };

    QCoro::Task<> search(Display display, std::stop_token cancelled);
    QCoro::Task<> switchOn();
    void show(const State& state);

    const ChosenDisplay m_display;
    bool m_isSearching = false;
    QString m_note;
    bool m_asksToAllow = false;
    std::stop_source m_cancel;

    // Belongs to the worker.
    AccessibilitySwitch m_switch;

    Worker m_worker{ "browser page" };
};

} // namespace vantry
