#include "telemetry/monitor/MonitorPane.h"

#include "foundation/fields/FixedFont.h"
#include "foundation/text/Text.h"
#include "telemetry/monitor/MonitorText.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextCursor>

#include <algorithm>

namespace {

// A document counts CR LF as one character.
qsizetype DocumentLength(QByteArrayView text) {
    return text.size() - text.count("\r\n");
}

QString DocumentText(QByteArrayView text) {
    return Text::FromBytes(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

} // namespace

MonitorPane::MonitorPane(const MonitorText& text, QWidget* parent)
    : TrafficPane(parent)
    , m_text(text)
    , m_shownEnd(text.Begin()) {
    setObjectName(QStringLiteral("txtMon"));
    setAccessibleName(tr("Monitor"));
    setFont(FixedFont());
    const auto show = [this] { ChangeText([this] { ShowChanges(); }); };
    connect(&text, &MonitorText::Changed, this, show);
    show();
}

void MonitorPane::ShowChanges() {
    const QByteArrayView text = m_text.Text();
    const qsizetype shown = std::max(m_shownEnd, m_text.Begin()) - m_text.Begin();
    m_shownEnd = m_text.End();

    ShowLastBlock(true);
    QTextCursor edit(document());
    edit.beginEditBlock();
    const qsizetype before = document()->characterCount() - 1; // without the document's own end
    edit.setPosition(static_cast<int>(before - DocumentLength(text.first(shown))), QTextCursor::KeepAnchor);
    edit.removeSelectedText();
    edit.movePosition(QTextCursor::End);
    edit.insertText(DocumentText(text.sliced(shown)));
    edit.endEditBlock();
    ShowLastBlock(!document()->lastBlock().text().isEmpty());
}

// The text ends with a line end; the empty line behind it takes no room.
void MonitorPane::ShowLastBlock(bool isShown) {
    QTextBlock last = document()->lastBlock();
    if (last.isVisible() == isShown || document()->blockCount() == 1)
        return;
    last.setVisible(isShown);
    last.setLineCount(isShown ? 1 : 0);
    QAbstractTextDocumentLayout& layout = *document()->documentLayout();
    Q_EMIT layout.documentSizeChanged(layout.documentSize());
}
