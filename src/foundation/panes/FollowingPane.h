#pragma once

#include <QPlainTextEdit>

#include <functional>

/// A read-only pane of plain text that grows at its end. The newest line stays in view, whatever happens to
/// the pane's size and font, unless the user has scrolled back; then the line at the top stays there until
/// the user comes back to the end, or all of the text fits into the pane.
class FollowingPane : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit FollowingPane(QWidget* parent = nullptr);

protected:
    /// Every change of the text belongs into such a `change`, which is called once and at once.
    void ChangeText(const std::function<void()>& change);

    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void KeepPlace(const std::function<void()>& step);
    QTextCursor TopLine() const;
    bool IsAtEnd() const;

    // Where the scroll bar stood after the last step, if at the end, or -1. Asked and compared, for scrolling
    // by keys gives no signal.
    int m_end = 0;
};
