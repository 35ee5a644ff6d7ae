#pragma once

#include <QList>
#include <QObject>
#include <QWindow>

#include <memory>

namespace vantry {

class ButtonPresses;

/// Tells of presses of the mouse outside of some windows of ours, also in other programs, which are not disturbed by that. Where
/// the desktop tells nobody, nothing is heard. Belongs to the main thread.
class PressesElsewhere : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool watched READ isWatched WRITE setWatched NOTIFY watchedChanged)
    Q_PROPERTY(QList<QWindow*> windows MEMBER m_windows NOTIFY windowsChanged)

public:
    explicit PressesElsewhere(QObject* parent = nullptr);
    ~PressesElsewhere() override;

    bool isWatched() const { return m_isWatched; }
    void setWatched(bool watched);

Q_SIGNALS:
    void pressed();
    void watchedChanged();
    void windowsChanged();

private:
    void listen();
    void onPress(std::uint32_t topLevel);

    QList<QWindow*> m_windows; ///< They outlive this.
    bool m_isWatched = false;
    std::unique_ptr<ButtonPresses> m_presses;
};

} // namespace vantry
