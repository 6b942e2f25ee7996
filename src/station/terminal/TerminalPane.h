#pragma once

#include "station/terminal/TerminalText.h"
#include "telemetry/monitor/TrafficPane.h"

#include <QTimer>

/// The terminal's monitor pane: green and cyan on black. However many texts come, it is redrawn once a turn
/// of the event loop, and only while it can be seen.
class TerminalPane : public TrafficPane {
    Q_OBJECT
public:
    explicit TerminalPane(QWidget* parent = nullptr);

    /// Appends a Windows-1252 text of this display kind, as text and nothing else.
    void Append(QByteArrayView text, qint16 kind);
    void Empty();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Changed();
    void Refresh();
    void Apply(const TerminalText::Change& change);

    TerminalText m_text;
    QTimer m_refresh;
};
