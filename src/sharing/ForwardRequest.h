#pragma once

#include <QByteArrayList>
#include <QString>

#include <optional>

class ForwardQueue;
class ProgramFolder;

/// What a program without the folder's lock asks of the station that holds it, by the file
/// "ForwardRequest.txt": a word on the first line and, behind "queue", a request's body on each of the
/// others. The station notices it, carries it out and removes it.
struct ForwardRequest {
    enum class Kind {
        Retry,   ///< all parked frames wait again
        Discard, ///< all parked frames are discarded
        Queue,   ///< more frames are queued
    };

    static constexpr qint64 largest = 64 * 1024 * 1024; ///< bytes of the file

    Kind kind = Kind::Retry;
    QByteArrayList bodies{}; ///< for Queue

    static QString FileName() { return QStringLiteral("ForwardRequest.txt"); }

    /// Leaves the request for the station. Answers an empty text, or why that cannot be; where another
    /// request is still there, it is to be tried again a second later.
    QString Leave(const ProgramFolder& folder) const;

    /// Whether a request lies in the folder.
    static bool IsLeft(const ProgramFolder& folder);

    /// The request that lies in the folder; none where it says nothing sensible.
    static std::optional<ForwardRequest> Find(const ProgramFolder& folder);

    static void Remove(const ProgramFolder& folder);

    /// Does it. Answers how many frames it was about.
    qsizetype CarryOut(ForwardQueue& queue) const;

    struct Outcome {
        bool isLeft = false;  ///< to the station that runs in the folder
        qsizetype frames = 0; ///< it was about, where it was done here
        QString error{};      ///< why it was neither done nor left
    };

    /// Does it where no station holds the folder's lock, else leaves it to that station.
    Outcome DoOrLeave(const ProgramFolder& folder, qsizetype keepAtMost) const;
};
