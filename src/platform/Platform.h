#pragma once

// The bundle of seams every form is given at construction.
struct AppInfo;
class Clock;
class Connection;
class Dialogs;
class Forms;
class InterfaceTable;
class Media;
class Process;
class Shell;
class Tray;

struct Platform {
    AppInfo &app;
    Dialogs &dialogs;
    Connection &connection;
    Shell &shell;
    Process &process;
    Clock &clock;
    Forms &forms;
    Tray &tray;
    InterfaceTable &interfaces;
    Media &media;
};
