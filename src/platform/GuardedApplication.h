#pragma once

#include <QApplication>

class Dialogs;
class Process;

// The last line of the error boundary: a run-time error that got past every
// handler's own guard still ends the program with its message, never with an
// exception unwinding through the event loop.
class GuardedApplication : public QApplication {
    Q_OBJECT
public:
    GuardedApplication(int &argc, char **argv);
    void setBoundary(Dialogs &dialogs, Process &process);
    bool notify(QObject *receiver, QEvent *event) override;

private:
    Dialogs *m_dialogs = nullptr;
    Process *m_process = nullptr;
};
