#pragma once

class QObject;

/// What a roof over the station (windows, a command line) does at its places in the station's start and end.
/// Each place may be left empty.
class Roof {
public:
    Roof() = default;
    Roof(const Roof&) = delete;
    Roof& operator=(const Roof&) = delete;
    virtual ~Roof() = default;

    /// The window over which messages appear, or none.
    virtual QObject* MessageOwner() { return nullptr; }

    /// Another program holds the folder, of which the user is about to be told.
    virtual void FolderIsTaken() {}

    /// The folder is ours: time for captions and help.
    virtual void Announce() {}

    /// The settings are being read; those of the window's place have their turn.
    virtual void PlaceWindow() {}

    /// Settings and callsigns are loaded, the observer stands, the elements are read.
    virtual void PrepareTracking() {}

    /// The terminal has been made.
    virtual void LoadTerminal() {}

    /// The link has been told to connect: the first refresh, timers, and the window to be shown.
    virtual void Show() {}

    /// The link is down and the timers stop: whatever still stands lets go of the station.
    virtual void ReleaseWindows() {}

    /// The last settings are being saved; those of the window's place have their turn. False keeps what was
    /// saved before, the tracked satellite included.
    virtual bool SaveWindowPlace() { return false; }
};
