#pragma once

#include "foundation/files/AppendFile.h"
#include "foundation/text/DateTime.h"

class Clock;
class ProgramFolder;
class clsIni;

/// The traffic as daily files, LOGS/yyyymmdd.TXT by local date. What is written is in the file at once.
/// Nothing that goes wrong here is reported or stops anybody: what cannot be written is passed over, and the
/// log goes on as soon as it can.
class TrafficLog {
public:
    TrafficLog(clsIni& cIni, const Clock& clock, const ProgramFolder& folder);

    /// Reads whether to log; if so, opens today's file.
    void Load();

    bool IsLogging() const { return m_isLogging; }

    /// Turns logging on or off and remembers it. The first write opens the file.
    void ToggleLogging();

    void OpenTrafficLog();
    void CloseTrafficLog();

    /// Appends a text, as it is, to the file of the day; nothing happens while logging is off.
    void WriteTrafficLog(QByteArrayView text);

    /// Closes the file after more than 300 seconds without traffic. To be called now and then.
    void CloseWhenIdle();

    bool IsOpen() const { return m_file.IsOpen(); }

private:
    void OpenFor(DateTime today);
    DateTime Today() const;
    void NoteActivity(DateTime today);

    clsIni& m_cIni;
    const Clock& m_clock;
    QString m_logsFolder;
    AppendFile m_file;
    bool m_isLogging = false;
    DateTime m_lastDate = 0.0;     // the local date of the last activity
    qint64 m_lastMilliseconds = 0; // its time, UTC: local time repeats an hour every year
};
