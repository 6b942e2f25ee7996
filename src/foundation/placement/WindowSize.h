#pragma once

#include <QObject>
#include <QSize>
#include <QString>

class QWidget;
class clsIni;

/// Remembers a window's size for those that keep no other memory of their place. Only a size that the user
/// chose is written, so that a window left alone goes on following fonts and screens.
class WindowSize : public QObject {
    Q_OBJECT
public:
    /// The keys are NAME_WIDTH and NAME_HEIGHT of section SETUP. All arguments must outlive this object.
    WindowSize(QWidget& window, clsIni& ini, QString name);

    /// Gives the window its remembered size, as far as the screen has room; false when there is none.
    bool Restore();

    /// The window has the size that it opens with.
    void Opened();

    /// Writes the size of the window's normal state if the user has changed it since.
    void Save();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QSize NormalSize() const;

    QWidget& m_window;
    clsIni& m_ini;
    QString m_name;
    QSize m_opened;
};
