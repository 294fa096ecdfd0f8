#include "platform/ErrorBoundary.h"

#include "platform/Dialogs.h"
#include "platform/Process.h"

namespace boundary {

QString messageFor(const basic::RuntimeError &error)
{
    return QStringLiteral("Run-time error '%1':\n\n%2").arg(error.number()).arg(error.description());
}

void reportAndEnd(Dialogs &dialogs, Process &process, const basic::RuntimeError &error)
{
    // One box, whatever fails under it while it is up.
    if (process.failed())
        return;
    process.setFailed();
    dialogs.MsgBox(messageFor(error), MsgBox::Critical + MsgBox::OkOnly);
    process.end(1);
}

} // namespace boundary
