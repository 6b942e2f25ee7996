#pragma once

#include "telemetry/history/TelemetryHistory.h"
#include "telemetry/imports/ImportZone.h"
#include "telemetry/replay/FrameText.h"

#include <QByteArrayList>

#include <functional>

/// What is to be known of files that do not tell it themselves.
struct ImportOptions {
    ImportZone zone;           ///< of times without one
    std::optional<qint64> utc; ///< of frames without a time, milliseconds since 1970-01-01 00:00
};

/// Reads the satellite's telemetry frames from files of any kind: another history, KISS recordings, traffic
/// logs with their date in the file name ("20261121.TXT"), monitor lines. The content decides the kind.
class ImportReader {
public:
    static constexpr qsizetype mostExamples = FrameText::mostExamples;

    /// A telemetry frame; texts are UTF-8 and hold as long as the call. False ends the reading.
    using Take = std::function<bool(qint64 utc, std::string_view source, int side,
                                    const HistoryLayout::Fields& fields)>;
    /// Is told how far the file is read, in bytes; false ends the reading.
    using Progress = std::function<bool(qint64 done, qint64 total)>;

    ImportReader(HistorySides sides, ImportOptions options, Take take);

    /// False when `take` or `progress` ended it, or when the file cannot be read: then Reason says why.
    bool Read(const QString& path, const Progress& progress);
    const QString& Reason() const { return m_reason; }

    /// Frames of others, and frames of the satellite that are no telemetry.
    qint64 Others() const { return m_others; }

    /// Lines and frames that were not understood, or whose time nobody knows; and the first of them.
    qint64 NotUnderstood() const { return m_notUnderstood; }
    const QByteArrayList& Examples() const { return m_examples; }

private:
    bool ReadHistory(const QString& path, const Progress& progress);
    bool ReadPieces(QFile& file, const Progress& progress, const std::function<void(QByteArrayView)>& add);
    bool ReadRecording(QFile& file, const Progress& progress);
    bool ReadText(QFile& file, const Progress& progress);
    void TakeTold(const FrameText::Told& told, const QDate& date);
    void TakeFrame(const HeardFrame& frame, std::optional<qint64> utc);
    void PassOver(QByteArrayView example);

    const HistorySides m_sides;
    const ImportOptions m_options;
    const Take m_take;
    QString m_reason;
    std::optional<qint64> m_last; // the time of the line above
    bool m_isEnded = false;       // by m_take
    qint64 m_others = 0;
    qint64 m_notUnderstood = 0;
    QByteArrayList m_examples;
};
