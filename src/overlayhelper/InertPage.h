#pragma once

#include <QWebEnginePage>

#include <functional>

namespace vantry {

/// A page that goes nowhere: only what we give it is shown.
class InertPage : public QWebEnginePage {
public:
    explicit InertPage(QWebEngineProfile& profile);

    void show(const QString& document);

    /// Runs a script of ours in a world of its own, which works though the page's scripts are off. It shares the document with the
    /// page, nothing else. What `stage.js` declares is there.
    void run(const QString& script, const std::function<void(const QVariant&)>& then = {});

    /// Ends the process that lays out the page: it may be too busy to hear anything.
    void kill() const;

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage* createWindow(WebWindowType) override { return nullptr; }
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString&, int, const QString&) override { }

private:
    bool m_isOurs = false; ///< The next navigation.
};

} // namespace vantry
