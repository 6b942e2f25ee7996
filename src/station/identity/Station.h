#pragma once

#include "foundation/text/QIRUtil.h"

#include <QObject>
#include <QString>

#include <functional>

class clsIni;
struct Setting;

/// Who transmits and from where: what the user entered about the own station. A setter writes its setting at
/// once, so that nothing is lost whatever happens next.
class Station : public QObject {
    Q_OBJECT
public:
    explicit Station(clsIni& cIni, QObject* parent = nullptr);

    /// Reads the settings; those that the file lacks are written there as empty.
    void Load();

    /// Reads the settings; writes nothing.
    void Peek();

    const QString& strCallsign() const { return m_callsign; }
    const QString& strComment() const { return m_comment; }

    /// The Maidenhead locator, six characters; may be empty.
    const QString& strLoc() const { return m_locator; }

    /// The latitude as an APRS position has it, DDMM.hhN; may be empty.
    const QString& strLat() const { return m_latitude; }

    /// The longitude as an APRS position has it, DDDMM.hhE; may be empty.
    const QString& strLong() const { return m_longitude; }

    void setStrCallsign(const QString& callsign);
    void setStrComment(const QString& comment);
    void setStrLoc(const QString& locator);
    void setStrLat(const QString& latitude);
    void setStrLong(const QString& longitude);

    /// Degrees, north positive; 0 where the text is no latitude on the globe.
    double dblLat() const { return m_latitudeDegrees; }

    /// Degrees, east positive; 0 where the text is no longitude on the globe.
    double dblLong() const { return m_longitudeDegrees; }

    /// See QIRUtil::IsPositionKnown.
    bool PositionKnown() const { return QIRUtil::IsPositionKnown(m_latitudeDegrees, m_longitudeDegrees); }

Q_SIGNALS:
    /// A value differs from before.
    void Changed();

private:
    void Take(const std::function<QString(const Setting&)>& valueOf);
    void Change(QString& member, const QString& value);

    clsIni& m_cIni;
    QString m_callsign;
    QString m_comment;
    QString m_locator;
    QString m_latitude;
    QString m_longitude;
    double m_latitudeDegrees = 0.0;
    double m_longitudeDegrees = 0.0;
};
