#pragma once

#include <QPlainTextEdit>
#include <QTextCursor>

#include <functional>

class FindBar;
class QAction;

/// A read-only pane of plain text that grows at its end. The newest line stays in view, whatever happens to
/// the pane's size and font, unless the user has scrolled back; then the line at the top stays there until
/// the user comes back to the end, or all of the text fits into the pane.
class FollowingPane : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit FollowingPane(QWidget* parent = nullptr);

    /// Brings the newest line into view, from where on the pane follows it.
    void GoToEnd();

protected:
    /// Every change of the text belongs into such a `change`, which is called once and at once.
    void ChangeText(const std::function<void()>& change);

    /// An entry of the context menu, in the order of their making. `action` gets the place in the text at
    /// which the menu was opened.
    QAction* AddEntry(const QString& name, const QString& caption,
                      std::function<void(const QTextCursor&)> action);

    /// The menu is about to open at this place in the text.
    virtual void PrepareMenu(const QTextCursor& /*place*/) {}

    void contextMenuEvent(QContextMenuEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void KeepPlace(const std::function<void()>& step);
    QTextCursor TopLine() const;
    bool IsAtEnd() const;
    void AddEntries();

    QTextCursor m_menuPlace; // at which the menu was opened last
    QAction* mnuCopy = nullptr;
    FindBar* m_find = nullptr; // made when first asked for
    // Where the scroll bar stood after the last step, if at the end, or -1. Asked and compared, for scrolling
    // by keys gives no signal.
    int m_end = 0;
};
