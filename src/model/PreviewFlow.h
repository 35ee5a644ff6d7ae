#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "base/Worker.h"
#include "media/Picture.h"
#include "project/Project.h"
#include "render/Player.h"

#include <QCoroTask>
#include <QFuture>

#include <filesystem>
#include <memory>
#include <stop_token>

namespace vantry {

class AppModel;

/// Shows the open project as a video: builds what the player plays, and keeps the player and the model's playhead together. Belongs
/// to the main thread; items are built on a thread of its own.
class PreviewFlow : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY stateChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY stateChanged)
    Q_PROPERTY(double length READ length NOTIFY lengthChanged)

public:
    /// The model outlives the flow.
    explicit PreviewFlow(AppModel& model);
    ~PreviewFlow() override;

    /// Gives the player the project as it is now, at the model's pending seek, once, else where it is. Until that is built it goes
    /// on with what it has, also when it cannot be built, which the alert tells. A refresh that another one overtakes does nothing
    /// more. Without clips the player has nothing to play.
    void refresh();
    void clear();

    /// Moves playhead and player: exactly, and to the start for a negative time and for none at all.
    void seek(double time);

    /// What is seen, null while there is nothing.
    Picture picture() const { return m_player.picture(); }
    bool isEmpty() const { return m_player.state() == Player::State::Empty; }
    bool isPlaying() const { return m_player.state() == Player::State::Playing; }

    /// Of what is played, in seconds.
    double length() const { return m_player.length(); }

    /// Plays, or pauses.
    Q_INVOKABLE void toggle();

    /// Pauses this many frames further on, or back.
    Q_INVOKABLE void step(int frames);

    /// While somebody holds the playhead it does not run away. Afterwards what was playing plays on.
    Q_INVOKABLE void hold();
    Q_INVOKABLE void release();

Q_SIGNALS:
    void pictureChanged();
    void stateChanged();
    void lengthChanged();

private:
    using Item = std::shared_ptr<const PlayerItem>;

    QCoro::Task<> rebuild(Project project, std::filesystem::path folder, std::stop_token overtaken);
    QFuture<Item> build(Project project, std::filesystem::path folder, OverlayImages images, std::stop_token overtaken);
    void install(Item item);
    void fail(const QString& description);

    AppModel& m_model;
    Player m_player;
    std::stop_source m_rebuild;
    bool m_playsOn = false; ///< When it is released.
    Worker m_worker{ "vantry.preview" };
};

} // namespace vantry
