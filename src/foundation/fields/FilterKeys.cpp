#include "foundation/fields/FilterKeys.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>

#include <utility>

namespace {

class KeyFilter : public QObject {
public:
    KeyFilter(QLineEdit* field, KeyRule rule)
        : QObject(field)
        , m_field(field)
        , m_rule(std::move(rule)) {
        field->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress && !m_field->isReadOnly()) {
            const auto& key = static_cast<const QKeyEvent&>(*event);
            if (IsTyping(key) && Filtered(key.text()) != key.text()) {
                m_field->insert(Filtered(key.text()));
                return true;
            }
        } else if (event->type() == QEvent::InputMethod && !m_field->isReadOnly()) {
            auto& composed = static_cast<QInputMethodEvent&>(*event);
            composed.setCommitString(Filtered(composed.commitString()), composed.replacementStart(),
                                     composed.replacementLength());
        }
        return QObject::eventFilter(watched, event);
    }

private:
    // Ctrl makes a key a command; together with Alt it is some keyboards' way to a further character.
    static bool IsTyping(const QKeyEvent& key) {
        const Qt::KeyboardModifiers modifiers = key.modifiers();
        const bool isCommand = modifiers.testFlag(Qt::MetaModifier) ||
                               modifiers.testFlag(Qt::ControlModifier) != modifiers.testFlag(Qt::AltModifier);
        return !isCommand && !key.text().isEmpty() && !key.text().startsWith(QChar(0x7F)) &&
               key.text().front() >= u' ';
    }

    QString Filtered(const QString& typed) const {
        QString kept;
        for (const QChar character : typed)
            if (const std::optional<QChar> passed = m_rule(character))
                kept += *passed;
        return kept;
    }

    QLineEdit* m_field;
    KeyRule m_rule;
};

} // namespace

void FilterKeys(QLineEdit* field, KeyRule rule) {
    new KeyFilter(field, std::move(rule)); // the field owns it
}
