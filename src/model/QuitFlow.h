#pragma once

#include <QCoroTask>
#include <QObject>
#include <QString>

namespace vantry {

class AppModel;
class ProjectSaver;
class SalvageFlow;

/// Ends the program in order: what runs is cancelled or finished, and what is not on the disk is tried once more. Where something
/// would be lost it waits for the user to choose. Belongs to the main thread.
class QuitFlow : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)

public:
    /// All of them outlive the flow.
    QuitFlow(AppModel& model, ProjectSaver& saver, SalvageFlow& salvage);

    /// Finishes what must not be lost and then has the model say `readyToQuit`, or has a problem.
    Q_INVOKABLE void start();

    /// Quits with what there is.
    Q_INVOKABLE void quitAllTheSame();

    /// Takes the wish to quit back.
    Q_INVOKABLE void stay() { setProblem({}); }

    /// What would be lost. Empty when nothing would, or nobody wants to quit.
    const QString& problem() const { return m_problem; }

Q_SIGNALS:
    void problemChanged();

private:
    QCoro::Task<> finish();
    QCoro::Task<QString> problemOfSaving();
    void setProblem(const QString& text);

    AppModel& m_model;
    ProjectSaver& m_saver;
    SalvageFlow& m_salvage;
    QString m_problem;
};

} // namespace vantry
