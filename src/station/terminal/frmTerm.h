#pragma once

#include "foundation/fields/FieldGuard.h"
#include "foundation/placement/KeptPlace.h"
#include "station/terminal/TerminalSession.h"

#include <QMainWindow>

#include <memory>

class QAction;
class QLabel;
class QLineEdit;
class QPushButton;
class TerminalPane;

/// The terminal: all traffic in colour, and a line to send own frames. Made hidden; what arrives while it is
/// hidden is kept like the rest.
class frmTerm : public QMainWindow {
    Q_OBJECT
public:
    /// `session` is open; all arguments must outlive the window.
    frmTerm(clsIni& cIni, const mb& messages, UnprotoLink& link, TerminalSession& session,
            const ProgramFolder& folder, QWidget* parent = nullptr);
    frmTerm(const frmTerm&) = delete;
    frmTerm& operator=(const frmTerm&) = delete;

    /// Saves and closes what Unload would, if that has not been done yet, and tells nobody.
    ~frmTerm() override;

    /// Shows a Windows-1252 text of this DisplayKind, its line ends included.
    void ShowData(QByteArrayView text, qint16 kind);

    /// Shows the window, restored if minimised, before all others.
    void BringForward();

    /// Addresses what is sent next to this callsign.
    void PutInTo(const QString& callsign);

    /// Hands what the user has entered to the session, closes it and gives up the window's place; then tells.
    /// What any way of closing the window does. A second call does nothing.
    void Unload();

Q_SIGNALS:
    /// The window has saved and closed everything that is its own, the last thing it does: whoever holds it
    /// lets it go, with deleteLater(), and makes a new one when the user asks for the terminal again.
    void ImUnloading();

    /// The user wants a callsign among the satellite's, and the folder of the logs.
    void AddToCallsignsAsked(const QString& callsign);
    void LogFolderAsked();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Build();
    void BuildMenu();
    void SetRules();
    void LoadFont();
    void AddFontSizes();
    void ApplyFontSize();
    void ChangeFontSize(int steps);
    bool Wheel(const QWheelEvent& wheel);
    void LoadFields();
    AddressFields Fields() const;
    QString FaultOf(const QWidget* field);
    bool MayLeave(const QWidget* field);
    bool TransmitKey(const QKeyEvent& key);
    bool WalkHistory(int step);
    void Remember(const QStringList& texts);
    void ShowCount();
    void Wrap();
    void Transmit(const QStringList& lines);
    void Close();
    bool Release();

    clsIni& m_cIni;
    const mb& m_messages;
    UnprotoLink& m_link;
    const ProgramFolder& m_folder;
    TerminalSession& m_session;
    FieldGuard m_guard;
    std::unique_ptr<KeptPlace> m_place;
    QFont m_textFont; // of pane and transmit line
    int m_wheel = 0;  // what it has turned short of a step
    std::optional<QString> m_lastLine;
    QStringList m_sent;     // the newest last
    qsizetype m_sentAt = 0; // where the user walks in them; at their end he is in his own text
    QString m_ownText;
    bool m_isUnloaded = false;

    TerminalPane* rtbMon = nullptr;
    QLineEdit* txtTo = nullptr;
    QLineEdit* txtVia = nullptr;
    QLineEdit* txtPort = nullptr;
    QLineEdit* txtTx = nullptr;
    QLabel* labCount = nullptr;
    QPushButton* cmdAprs = nullptr;
    QPushButton* cmdLoc = nullptr;
    QAction* mnuLogAllData = nullptr;
};
