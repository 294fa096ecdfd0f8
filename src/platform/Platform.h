#pragma once

// The bundle of seams every form is given at construction.
struct AppInfo;
class Clock;
class Connection;
class Dialogs;
class Forms;
class InterfaceTable;
class Media;
class MixerDevice;
class Process;
class Shell;
class Tray;

// A mixer device with no line: the mixer of a bundle that names none.
MixerDevice &emptyMixer();

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
    MixerDevice &mixer = emptyMixer();
};
