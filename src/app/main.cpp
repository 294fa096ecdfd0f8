// Zarvent starts at its splash. No argument, no environment variable, no
// configuration: everything else is found at run time.

#include "panel/PanelNowPlaying.h"
#include "platform/ErrorBoundary.h"
#include "platform/GuardedApplication.h"
#include "app/RealPlatform.h"
#include "platform/qtdesktop/MprisService.h"
#include "shell/ShellForms.h"

#include <QTimer>
#include <QtGlobal>

#include <memory>

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

    // The desktop's media keys and sound menu reach the panel last shown.
    // The bus is joined once the loop runs, off the road to the splash; with
    // no session bus there is no service, and nothing is said.
    PanelNowPlaying nowPlaying(real.platform);
    std::unique_ptr<MprisService> mpris;
    QTimer::singleShot(0, &application, [&] { mpris = MprisService::onSessionBus(nowPlaying); });
    return application.exec();
}
