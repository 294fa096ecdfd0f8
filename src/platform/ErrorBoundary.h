#pragma once

#include "basic/RuntimeError.h"
#include "platform/Process.h"

#include <utility>

class Dialogs;

// Where an event handler meets the event loop. A run-time error that nothing
// below caught ends the program, as the runtime always did: the message
// "Run-time error 'N':" with its description, then the end of the process.
namespace boundary {

QString messageFor(const basic::RuntimeError &error);
void reportAndEnd(Dialogs &dialogs, Process &process, const basic::RuntimeError &error);

template <class Handler>
void run(Dialogs &dialogs, Process &process, Handler &&handler)
{
    if (process.failed())
        return;
    try {
        std::forward<Handler>(handler)();
    } catch (const basic::RuntimeError &e) {
        reportAndEnd(dialogs, process, e);
    }
}

} // namespace boundary
