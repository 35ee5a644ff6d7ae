#pragma once

#include <QObject>
#include <QString>

#include <optional>
#include <vector>

namespace vantry {

class Notice;

/// What goes on, or does not work, in the background: a list of notices, each of which belongs to whoever holds it and is cleared
/// by nobody else. Belongs to the main thread.
class Notices : public QObject {
    Q_OBJECT

public:
    /// The one that matters: the newest warning, else the newest of the others. Nothing where there is none.
    std::optional<QString> shown() const;

    /// The user should do something about it, or would not expect it.
    bool isWarning() const;

Q_SIGNALS:
    /// `shown` may have changed.
    void changed();

private:
    friend class Notice;

    const Notice* newest() const;

    std::vector<const Notice*> m_notices; ///< The newest last.
};

/// A place for one text, empty at first. Gone with its owner.
class Notice {
public:
    /// The notices outlive it.
    explicit Notice(Notices& notices)
        : m_notices(notices)
    {
    }
    ~Notice() { clear(); }

    Notice(const Notice&) = delete;
    Notice& operator=(const Notice&) = delete;

    /// Says what goes on or has been done. Progress that goes on is no news: while there is such a text, the next one takes its
    /// place.
    void tell(const QString& text) { set(Weight::Note, text); }

    /// Says what the user should do something about, or would not expect. The same words again are no news.
    void warn(const QString& text) { set(Weight::Warning, text); }

    /// No news either where there is nothing.
    void clear();

    const QString& text() const { return m_text; }

private:
    friend class Notices;
    enum class Weight { Note, Warning };

    void set(Weight weight, const QString& text);

    Notices& m_notices;
    Weight m_weight = Weight::Note;
    QString m_text;
};

} // namespace vantry
