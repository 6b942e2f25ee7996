#pragma once

#include "foundation/files/Csv.h"
#include "foundation/system/FileSync.h"
#include "telemetry/calibration/ChannelMap.h"
#include "telemetry/calibration/FormulaTable.h"
#include "telemetry/history/HistoryLayout.h"
#include "telemetry/history/HistoryRows.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <vector>

class CallsignList;
class QFile;

/// The sides of the callsigns that are listed: 0 A, 1 B. Callsigns are UTF-8.
using HistorySides = std::map<QByteArray, int, std::less<>>;

HistorySides SidesOf(const CallsignList& callsigns);

/// A cell of the grids.
struct HistoryChannel {
    int side = 0; ///< 0 A, 1 B
    int grid = 0; ///< 0 POWER, 1 CURRENT, 2 TEMP
    int row = 0;  ///< of the grid, from 1

    bool operator==(const HistoryChannel&) const = default;
};

/// A channel's readings in the order of their times, one in each place of all columns.
struct HistoryColumns {
    std::vector<qint64> utc;    ///< milliseconds since 1970-01-01 00:00
    std::vector<double> raw;    ///< as sent
    std::vector<double> value;  ///< in the channel's unit; no number (NaN) where no formula converts it
    std::vector<quint32> frame; ///< for TelemetryHistory::Frame and Sequences
};

/// One frame of the history.
struct HistoryFrame {
    qint64 utc = 0;    ///< milliseconds since 1970-01-01 00:00
    QByteArray source; ///< UTF-8
    int side = 0;      ///< 0 A, 1 B
    int frameType = 0; ///< 0 to 3; 4 when it names no channels
};

/// The frames of the history file tlm.txt, ready to be asked. Only what was heard is kept of each; values are
/// made when asked for, so that better formulae mend the past. What changes it (all that is not const) is one
/// thread's at a time, with no other asking; const functions may be called by many at once.
class TelemetryHistory {
public:
    /// Is told how far opening is, in bytes; false ends it.
    using Progress = std::function<bool(qint64 done, qint64 total)>;

    enum class Opened {
        Done,      ///< also where there is no file: then there are no frames
        Cancelled, ///< by Progress; there are no frames
        Unreadable ///< Reason says why; there are no frames
    };

    enum class Followed { Nothing, Appended, Replaced };

    /// What the file holds beside frames and headers.
    struct Foreign {
        qint64 lines = 0;
        qint64 firstLine = 0; ///< its number, from 1
    };

    TelemetryHistory(QString path, const ChannelMap& map, FormulaTable formulae, HistorySides sides);

    /// Reads the file from its start. It may take a while: meant for a thread of its own.
    Opened Open(const Progress& progress = {});
    const QString& Reason() const { return m_reason; }

    /// Reads what was appended since. Where the file is no longer the one that was read (replaced, cut,
    /// removed), nothing changes and it has to be opened anew.
    Followed Follow();

    /// Decodes with other formulae and callsigns from now on.
    void Decode(FormulaTable formulae, HistorySides sides);

    quint32 Frames() const { return m_rows.Count(); }
    const Foreign& ForeignLines() const { return m_foreign; }

    /// The times of the first and the last frame; none without frames.
    std::optional<std::pair<qint64, qint64>> Span() const;

    /// When the last frame's run began: between the frames of a run there is no gap longer than this. Only
    /// where there are frames.
    qint64 LastRun(qint64 longestGap) const;

    /// The readings of each channel from `from` to `to`, both included.
    std::vector<HistoryColumns> Readings(std::span<const HistoryChannel> channels, qint64 from,
                                         qint64 to) const;

    /// A converted reading.
    struct Value {
        qint64 utc = 0;
        double raw = 0.0;
        double value = 0.0;
        quint32 frame = 0;
    };

    /// What the grids showed in these cells at a time: each channel's last converted value until then.
    std::vector<std::optional<Value>> Shown(std::span<const HistoryChannel> channels, qint64 utc) const;

    /// `frame`: below Frames().
    HistoryFrame Frame(quint32 frame) const;

    /// The sequence fields of frames, UTF-8, read again from the file; empty where it has changed.
    std::vector<QByteArray> Sequences(std::span<const quint32> frames) const;

private:
    struct Source {
        QByteArray name;
        int sideThen = 0; // as the line has it
        int side = 0;
    };
    struct Section {
        qint64 offset = 0; // of its header
        HistoryLayout layout;
    };

    void Clear();
    bool ReadOn(QFile& file, const Progress& progress, bool isOpening);
    bool TakeLine(std::string_view line);
    bool TakeFrame();
    void PassOver();
    std::optional<quint16> SourceOf(std::string_view name, int sideThen);
    int SideNow(const QByteArray& source, int sideThen) const;
    QByteArray SequenceOf(QFile& file, quint32 frame) const;
    const HistoryLayout& LayoutAt(qint64 offset) const;

    const QString m_path;
    const ChannelMap m_map;
    FormulaTable m_formulae;
    HistorySides m_sides;

    HistoryRows m_rows;
    std::vector<Source> m_sources;
    std::map<std::pair<QByteArray, int>, quint16> m_sourceNumbers;
    quint16 m_lastSource = 0;
    std::vector<Section> m_sections;
    Foreign m_foreign;
    QString m_reason;

    std::optional<FileIdentity> m_identity;
    qint64 m_position = 0; // behind the last line that was read
    qint64 m_lines = 0;    // until there
    QByteArray m_tail;     // the last bytes before it
    Csv::Record m_record;
};
