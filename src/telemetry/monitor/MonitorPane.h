#pragma once

#include "telemetry/monitor/TrafficPane.h"

class MonitorText;

/// The monitor pane: shows the monitor text as plain text, whatever characters came from the air.
class MonitorPane : public TrafficPane {
    Q_OBJECT
public:
    explicit MonitorPane(const MonitorText& text, QWidget* parent = nullptr);

private:
    void ShowChanges();
    void ShowLastBlock(bool isShown);

    const MonitorText& m_text;
    qint64 m_shownEnd; // up to where the pane shows the text, counted as MonitorText does
};
