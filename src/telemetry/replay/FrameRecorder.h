#pragma once

#include "foundation/files/AppendFile.h"

struct HeardFrame;

/// Keeps what is heard in a recording, a file of KISS frames with their times (see RecordedFrame), appended
/// to. On the disk within a second; frames that cannot be written wait, some thousands of them.
class FrameRecorder {
public:
    /// `failed` is told the reason when the recording cannot be written, and again only after it could.
    explicit FrameRecorder(const AppendFile::Failed& failed);

    /// Goes on in the recording in this file, behind what is there, or begins one. False when the file holds
    /// something else, or is none: nothing is recorded then.
    bool Start(const QString& path);
    void Stop();

    bool IsRecording() const { return !m_path.isEmpty(); }

    /// The file, empty while nothing is recorded.
    const QString& Path() const { return m_path; }

    /// A sink of live frames: those heard of which there are raw bytes are kept.
    void Take(const HeardFrame& frame);

private:
    AppendFile m_file;
    QString m_path;
    std::string m_piece;
};
