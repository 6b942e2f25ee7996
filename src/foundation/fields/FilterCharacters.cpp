#include "foundation/fields/FilterCharacters.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QValidator>

#include <utility>

namespace {

constexpr bool IsLineEnd(QChar c) {
    return c == u'\r' || c == u'\n' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

// Filters what comes before the field takes it, so that the field's undo history stays. As the field's
// validator it also sees every text that came another way, and puts that right afterwards.
class CharacterFilter : public QValidator {
public:
    CharacterFilter(QLineEdit* field, CharacterRule rule)
        : QValidator(field)
        , m_field(field)
        , m_rule(std::move(rule)) {
        field->setValidator(this);
        field->installEventFilter(this);
    }

    State validate(QString& text, int& caret) const override {
        if (m_field->isModified()) { // by the user: setText() leaves the field unmodified
            caret = static_cast<int>(Filtered(text.left(caret)).size());
            text = Filtered(text);
        }
        return Acceptable;
    }

    bool eventFilter(QObject*, QEvent* event) override {
        // Other events come also to a field that is being destroyed, and is no line edit any more.
        const bool isInput = event->type() == QEvent::KeyPress || event->type() == QEvent::Drop ||
                             event->type() == QEvent::InputMethod;
        if (!isInput || m_field->isReadOnly())
            return false;
        switch (event->type()) {
        case QEvent::KeyPress:
            return TakeKey(static_cast<const QKeyEvent&>(*event));
        case QEvent::Drop:
            TakeDrop(static_cast<QDropEvent&>(*event));
            return true;
        case QEvent::InputMethod: {
            auto& composed = static_cast<QInputMethodEvent&>(*event);
            composed.setCommitString(Filtered(composed.commitString()), composed.replacementStart(),
                                     composed.replacementLength());
            return false;
        }
        default:
            return false;
        }
    }

private:
    // Ctrl makes a key a command; together with Alt it is some keyboards' way to a further character.
    static bool IsTyping(const QKeyEvent& key) {
        const bool isCommand =
            key.modifiers().testFlag(Qt::ControlModifier) && !key.modifiers().testFlag(Qt::AltModifier);
        return !isCommand && !key.text().isEmpty() && key.text().front() >= u' ' &&
               key.text().front() != QChar(0x7F);
    }

    bool TakeKey(const QKeyEvent& key) {
        if (key.matches(QKeySequence::Paste))
            return Take(QGuiApplication::clipboard()->text());
        return IsTyping(key) && Take(key.text());
    }

    // Puts what the rule leaves of the text in place of the selection. False where that is all of it: the
    // field does that by itself.
    bool Take(const QString& text) {
        const QString kept = Filtered(text);
        if (kept == text)
            return false;
        if (!kept.isEmpty())
            m_field->insert(kept);
        return true;
    }

    void TakeDrop(QDropEvent& drop) {
        QMimeData kept;
        kept.setText(Filtered(drop.mimeData()->text()));
        QDropEvent filtered(drop.position(), drop.possibleActions(), &kept, drop.buttons(), drop.modifiers());
        filtered.setDropAction(drop.dropAction());
        m_field->event(&filtered);
        drop.setDropAction(filtered.dropAction());
        drop.setAccepted(filtered.isAccepted());
    }

    QString Filtered(QString text) const {
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        QString kept;
        for (const QChar character : std::as_const(text))
            if (const std::optional<QChar> passed = m_rule(IsLineEnd(character) ? u' ' : character))
                kept += *passed;
        return kept;
    }

    QLineEdit* m_field;
    CharacterRule m_rule;
};

} // namespace

void FilterCharacters(QLineEdit* field, CharacterRule rule) {
    new CharacterFilter(field, std::move(rule)); // the field owns it
}

void KeepOnOneLine(QLineEdit* field) {
    FilterCharacters(field, [](QChar any) { return std::optional(any); });
}
