// Zarvent starts at its splash. No argument, no environment variable, no
// configuration: everything else is found at run time.

#include "platform/ErrorBoundary.h"
#include "platform/GuardedApplication.h"
#include "platform/RealPlatform.h"
#include "shell/ShellForms.h"

#include <QtGlobal>

namespace {

// The program keeps no log and says nothing on its streams; Qt's own notes
// (a missing runtime folder, a plugin's complaint) go nowhere as well.
void silence(QtMsgType, const QMessageLogContext &, const QString &) {}

} // namespace

int main(int, char **argv)
{
    qInstallMessageHandler(silence);

    // Only the program's own path reaches Qt: no argument is read.
    int qtArgc = 1;
    char *qtArgv[] = {argv[0], nullptr};
    GuardedApplication application(qtArgc, qtArgv);
    application.setQuitOnLastWindowClosed(false); // forms hide; only an explicit end ends

    RealPlatform real;
    application.setApplicationName(real.app.Title);
    application.setBoundary(real.dialogs, real.process);
    defineForms(real.platform);
    boundary::run(real.dialogs, real.process, [&] { real.forms.Show(QStringLiteral("frmSplash")); });
    return application.exec();
}
