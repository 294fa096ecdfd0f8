#pragma once

// The bundle of seams every form is given at construction.
struct AppInfo;
class Clock;
class Connection;
class Dialogs;
class Forms;
class Process;
class Shell;

struct Platform {
    AppInfo &app;
    Dialogs &dialogs;
    Connection &connection;
    Shell &shell;
    Process &process;
    Clock &clock;
    Forms &forms;
};
