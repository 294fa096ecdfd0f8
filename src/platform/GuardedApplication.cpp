#include "platform/GuardedApplication.h"

#include "platform/ErrorBoundary.h"

GuardedApplication::GuardedApplication(int &argc, char **argv)
    : QApplication(argc, argv)
{
}

void GuardedApplication::setBoundary(Dialogs &dialogs, Process &process)
{
    m_dialogs = &dialogs;
    m_process = &process;
}

bool GuardedApplication::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const basic::RuntimeError &e) {
        if (m_dialogs && m_process)
            boundary::reportAndEnd(*m_dialogs, *m_process, e);
        return true;
    }
}
