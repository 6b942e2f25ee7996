#include "telemetry/imports/ImportReader.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/text/Text.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/frames/Reading.h"
#include "telemetry/imports/HistoryWalk.h"
#include "telemetry/replay/FrameRecording.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

constexpr qint64 pieceSize = 65536;
constexpr qsizetype exampleLength = 80;

// The date of a traffic log's name; invalid for any other name.
QDate DateOfName(const QString& path) {
    return QDate::fromString(QFileInfo(path).completeBaseName(), QStringLiteral("yyyyMMdd"));
}

bool IsHistory(std::string_view start) {
    if (start.starts_with("\xEF\xBB\xBF"))
        start.remove_prefix(3);
    Csv::Record record;
    return record.Split(start.substr(0, FindLineEnd(start))) && HistoryLayout::Of(record.Fields());
}

} // namespace

ImportReader::ImportReader(HistorySides sides, ImportOptions options, Take take)
    : m_sides(std::move(sides))
    , m_options(std::move(options))
    , m_take(std::move(take)) {}

bool ImportReader::Read(const QString& path, const Progress& progress) {
    m_last.reset();
    QFile file(path);
    m_reason = OpenRegularFile(file);
    if (!m_reason.isEmpty())
        return false;
    const QByteArray start = file.peek(pieceSize);
    const bool isRead = IsHistory(ToView(start))        ? ReadHistory(path, progress)
                        : FrameRecording::Begins(start) ? ReadRecording(file, progress)
                                                        : ReadText(file, progress);
    if (file.error() != QFileDevice::NoError)
        m_reason = file.errorString();
    return isRead && m_reason.isEmpty();
}

bool ImportReader::ReadHistory(const QString& path, const Progress& progress) {
    HistoryWalk walk(path);
    m_reason = walk.Open();
    qint64 told = 0;
    while (m_reason.isEmpty() && walk.Next()) {
        if (walk.What() == HistoryWalk::Kind::Foreign)
            PassOver(QByteArrayView(walk.Bytes()));
        if (walk.What() == HistoryWalk::Kind::Frame) {
            const std::string_view source = walk.Frame().source;
            const auto listed = m_sides.find(QByteArrayView(source));
            if (!m_take(walk.Frame().utc, source,
                        listed == m_sides.end() ? walk.Frame().side : listed->second, walk.Fields()))
                return false;
        }
        if (walk.Position() - told >= pieceSize &&
            !progress(told = walk.Position(), std::max(walk.Position(), walk.Size())))
            return false;
    }
    m_reason += walk.Reason();
    return true;
}

bool ImportReader::ReadPieces(QFile& file, const Progress& progress,
                              const std::function<void(QByteArrayView)>& add) {
    const qint64 total = file.size();
    qint64 done = 0;
    for (QByteArray piece; !m_isEnded && !(piece = file.read(pieceSize)).isEmpty();) {
        add(piece);
        done += piece.size();
        if (!progress(done, std::max(done, total)))
            return false;
    }
    return !m_isEnded;
}

bool ImportReader::ReadRecording(QFile& file, const Progress& progress) {
    FrameRecording recording([this](const HeardFrame& frame, std::optional<qint64> utc) {
        TakeFrame(frame, utc ? utc : m_options.utc);
    });
    const bool isRead =
        ReadPieces(file, progress, [&recording](QByteArrayView piece) { recording.Add(piece); });
    m_notUnderstood += recording.Refused();
    return isRead;
}

bool ImportReader::ReadText(QFile& file, const Progress& progress) {
    const QDate date = DateOfName(file.fileName());
    FrameText text([&](const FrameText::Told& told) { TakeTold(told, date); });
    const bool isRead = ReadPieces(file, progress, [&text](QByteArrayView piece) { text.Add(piece); });
    if (isRead)
        text.End();
    m_notUnderstood += text.NotUnderstood();
    for (const QByteArray& example : text.Examples())
        if (m_examples.size() < mostExamples)
            m_examples.append(example);
    return isRead && !m_isEnded;
}

void ImportReader::TakeTold(const FrameText::Told& told, const QDate& date) {
    std::optional<qint64> utc;
    if (told.time) {
        const qint64 time = told.time->milliseconds;
        switch (told.time->clock) {
        case LineTime::Clock::Utc:
            utc = time;
            break;
        case LineTime::Clock::Unknown:
            utc = m_options.zone.UtcOf(time, m_last);
            break;
        case LineTime::Clock::TimeOfDay:
            if (date.isValid())
                utc = m_options.zone.UtcOn(date, time, m_last);
            break;
        }
        if (utc)
            m_last = utc;
    }
    TakeFrame(told.frame, utc ? utc : m_options.utc);
}

void ImportReader::TakeFrame(const HeardFrame& frame, std::optional<qint64> utc) {
    if (m_isEnded)
        return;
    const QByteArray source = Text::FromBytes(frame.source).toUtf8();
    const auto side = m_sides.find(source);
    const std::string_view information = ToView(frame.information);
    const auto parts =
        SplitAtCommas<TelemetryFrame::fieldsInLine>(information.substr(0, FindLineEnd(information)));
    if (frame.kind != HeardFrame::Kind::U || side == m_sides.end() || !parts) {
        ++m_others;
        return;
    }
    if (!utc) {
        PassOver(source + " without a time: " + frame.information.toByteArray());
        return;
    }
    std::array<QByteArray, TelemetryFrame::fieldsInLine> texts;
    HistoryLayout::Fields fields;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        texts[i] = Text::FromBytes(QByteArrayView((*parts)[i])).toUtf8();
        fields[i] = ToView(texts[i]);
    }
    m_isEnded = !m_take(*utc, ToView(source), side->second, fields);
}

void ImportReader::PassOver(QByteArrayView example) {
    ++m_notUnderstood;
    if (m_examples.size() < mostExamples)
        m_examples.append(example.first(std::min(example.size(), exampleLength)).trimmed().toByteArray());
}
