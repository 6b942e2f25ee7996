#pragma once

#include <QPlainTextEdit>

class MonitorText;

/// The monitor pane: shows the monitor text as plain text, whatever characters came from the air. The newest
/// line stays in view unless the user has scrolled back to read.
class MonitorPane : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit MonitorPane(const MonitorText& text, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void ShowChanges();
    void ScrollToNewest();

    const MonitorText& m_text;
    qint64 m_shownEnd; // up to where the pane shows the text, counted as MonitorText does
    bool m_follows = true;
    bool m_ownScroll = false; // what the scroll bar does is our doing, not the user's
};
