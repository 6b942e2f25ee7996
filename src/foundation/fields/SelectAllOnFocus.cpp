#include "foundation/fields/SelectAllOnFocus.h"

#include <QEvent>
#include <QFocusEvent>
#include <QLineEdit>

namespace {

class Selector : public QObject {
public:
    explicit Selector(QLineEdit* field)
        : QObject(field)
        , m_field(field) {
        field->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show) {
            m_visited = false;
        } else if (event->type() == QEvent::FocusIn) {
            FocusIn(static_cast<QFocusEvent*>(event)->reason());
        } else if (event->type() == QEvent::MouseButtonRelease && m_clickedIn) {
            // The press that brought the focus has set the caret and with it dropped the selection.
            m_clickedIn = false;
            if (!m_field->hasSelectedText())
                m_field->selectAll();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void FocusIn(Qt::FocusReason reason) {
        const bool comesBack = reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason ||
                               (reason == Qt::ActiveWindowFocusReason && m_visited);
        m_visited = true;
        m_clickedIn = reason == Qt::MouseFocusReason;
        if (!comesBack)
            m_field->selectAll();
    }

    QLineEdit* m_field;
    bool m_visited = false;   // since its window was shown
    bool m_clickedIn = false; // the focus came by a press that is not released yet
};

} // namespace

void SelectAllOnFocus(QLineEdit* field) {
    new Selector(field); // the field owns it
}
