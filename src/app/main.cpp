// Zarvent starts at its splash. No argument, no environment variable, no
// configuration: everything else is found at run time.

#include "platform/AppInfo.h"
#include "platform/ErrorBoundary.h"
#include "platform/Forms.h"
#include "platform/GuardedApplication.h"
#include "platform/Platform.h"
#include "platform/RealClock.h"
#include "platform/RealConnection.h"
#include "platform/RealDialogs.h"
#include "platform/RealProcess.h"
#include "platform/RealShell.h"
#include "shell/ShellForms.h"

int main(int, char **argv)
{
    // Only the program's own path reaches Qt: no argument is read.
    int qtArgc = 1;
    char *qtArgv[] = {argv[0], nullptr};
    GuardedApplication application(qtArgc, qtArgv);
    application.setQuitOnLastWindowClosed(false); // forms hide; only an explicit end ends

    AppInfo app = AppInfo::forExecutable();
    application.setApplicationName(app.Title);
    RealDialogs dialogs(app.Title);
    RealConnection connection;
    RealShell shell;
    RealProcess process;
    RealClock clock;
    Forms forms;
    Platform platform{app, dialogs, connection, shell, process, clock, forms};
    application.setBoundary(dialogs, process);

    defineForms(platform);
    boundary::run(dialogs, process, [&] { forms.Show(QStringLiteral("frmSplash")); });
    return application.exec();
}
