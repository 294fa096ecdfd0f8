#pragma once

// Scripted doubles of the platform seams, for tests of form logic. Each
// records what the form asked and answers what the test told it to.

#include "platform/AppInfo.h"
#include "platform/Clock.h"
#include "platform/Connection.h"
#include "platform/Dialogs.h"
#include "platform/Forms.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/Shell.h"
#include "doubles/ScriptedInterfaceTable.h"
#include "doubles/ScriptedMedia.h"
#include "doubles/ScriptedMixerDevice.h"
#include "doubles/ScriptedTray.h"

struct ShownBox {
    QString prompt;
    int style;
    QString title; // as passed; empty means the application title
};

// Virtual time. advance() fires every timer whose moment comes, in order of
// time and then of creation; fast timers fire every 16 ms as on the real clock.
class ManualClock : public Clock {
public:
    void reschedule(Timer &timer) override;
    void forget(Timer &timer) override;
    void advance(int ms);

private:
    struct Entry { Timer *timer; qint64 due, order; };
    QList<Entry> m_entries;
    qint64 m_now = 0;
    qint64 m_order = 0;
};

class ScriptedDialogs : public Dialogs {
public:
    int MsgBox(const QString &prompt, int style = 0, const QString &title = QString()) override;

    QList<ShownBox> shown;
    QList<int> answers; // answered in order; MsgBox::Ok once they run out
    std::function<void(const ShownBox &)> onShow; // lets a test look at the world while a box is "up"
    // A box stays up this long on the clock, as a real one runs its own loop:
    // timers tick under it, and may show boxes of their own.
    int upForMs = 0;
    ManualClock *clock = nullptr;

private:
    int m_depth = 0;
};

class ScriptedConnection : public Connection {
public:
    bool probe(const QString &url) override
    {
        probed.append(url);
        if (duringProbe)
            duringProbe();
        return probeAnswer;
    }
    bool connectedState() override
    {
        ++connectedCalls;
        return connectedAnswer;
    }

    bool probeAnswer = false;
    bool connectedAnswer = false;
    QStringList probed;
    int connectedCalls = 0;
    std::function<void()> duringProbe; // runs while the "blocking" probe is in progress
};

class ScriptedShell : public Shell {
public:
    struct Call { QString verb, file, parameters, directory; int showCommand; };
    void open(const QString &) override {}
    int execute(const QString &verb, const QString &file, const QString &parameters, const QString &directory,
                int showCommand) override
    {
        executed.append({verb, file, parameters, directory, showCommand});
        return answer;
    }
    QList<Call> executed;
    int answer = 42; // what the shell call answers
};

class ScriptedProcess : public Process {
public:
    void end(int exitCode = 0) override { ++ends; lastExitCode = exitCode; }
    int ends = 0;
    int lastExitCode = -1;
};

// All of the above bundled as the forms expect them.
class ScriptedPlatform {
public:
    ScriptedPlatform();

    AppInfo app;
    ScriptedDialogs dialogs;
    ScriptedConnection connection;
    ScriptedShell shell;
    ScriptedProcess process;
    ManualClock clock;
    ScriptedTray tray;
    ScriptedInterfaceTable interfaces;
    ScriptedMedia media;
    ScriptedMixerDevice mixer;
    Forms forms; // after every seam: its forms go first
    Platform platform;
};
