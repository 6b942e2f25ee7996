#pragma once

#include "foundation/settings/clsIni.h"

#include <QPointer>
#include <QRect>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>

class QWidget;

/// Lets a window reopen where the user left it. The window makes one when it is set up, calls RecordPosition
/// whenever it is moved or resized, and drops it when it closes: dropping saves.
///
/// Positions are those of the window's frame, sizes those of its inside, both in twips and both of the normal
/// state. Where the window system does not let programs place windows, LEFT and TOP keep their last values.
class clsWindowPos {
public:
    clsWindowPos();
    clsWindowPos(const clsWindowPos&) = delete;
    clsWindowPos& operator=(const clsWindowPos&) = delete;
    virtual ~clsWindowPos();

    /// Centres the window, then puts it where the settings say; missing ones are written. The keys are those
    /// of section SETUP that begin with `name` and "_". Without a settings object the program's own file is
    /// used.
    void Init(QWidget* window, const QString& name, clsIni* settings);

    /// Notes where the window stands, and in which state.
    void RecordPosition();

    /// Whether the place noted last counts: it does once the window has stood there for a moment.
    bool IsSettled() const { return !m_pending; }

    /// Set by the window once the user has resized it.
    bool blnBeenInResize = false;

protected:
    /// Whether this window system lets programs place their windows.
    virtual bool CanPlace() const;

private:
    QString Read(const QString& key, const QString& defaultValue);
    void Save(const QString& key, const QString& value);
    void Restore();
    void Keep(const QRect& place);
    void KeepPending();
    void SaveAll();

    QPointer<QWidget> m_window;
    QString m_prefix;
    float m_left = 0;
    float m_top = 0;
    float m_width = 0;
    float m_height = 0;
    std::unique_ptr<clsIni> m_ownIni;
    clsIni* m_ini = nullptr;
    QString m_section;
    qint16 m_state = 0; // 0 normal, 2 maximised
    bool m_canPlace = true;
    std::optional<QRect> m_pending;
    QTimer m_settle;
};
