// The texts of the monitor, of the terminal and of the download's status box: whatever is appended, they hold
// no more than their bound and the newest text, and end with it.
//
// An input is a row of texts: a byte for the kind, a byte for the length in tens, the text.

#include "Input.h"
#include "Require.h"
#include "foundation/text/Text.h"
#include "keps/DownloadStatus.h"
#include "station/terminal/TerminalText.h"
#include "telemetry/monitor/MonitorText.h"

#include <QCoreApplication>

#include <algorithm>
#include <string>

namespace {

// What a pane shows that follows the terminal's text as told: characters, each with its colour.
struct Pane {
    std::u16string text;
    std::string colours;

    void Apply(const TerminalText::Change& change) {
        const auto cut = change.isReset ? text.size() : static_cast<std::size_t>(change.cut);
        Require(cut <= text.size(), "no more is cut than is shown");
        text.erase(0, cut);
        colours.erase(0, cut);
        Append(change.text, change.runs);
    }

    void Append(const QByteArray& bytes, const QList<TerminalText::Run>& runs) {
        qsizetype at = 0;
        for (const TerminalText::Run& run : runs) {
            Require(run.length > 0, "no run is empty");
            const QString part = Text::FromBytes(bytes.sliced(at, run.length)).remove(u'\r');
            text += part.toStdU16String();
            colours.append(static_cast<std::size_t>(part.size()),
                           run.colour == TerminalText::Colour::Cyan ? 'c' : 'g');
            at += run.length;
        }
        Require(at == bytes.size(), "runs cover their text");
    }

    bool operator==(const Pane&) const = default;
};

class Terminal {
public:
    void Append(QByteArrayView text, qint16 kind) {
        constexpr qsizetype bound = 10000;
        m_all.append(text);
        m_text.Append(text, kind);
        Require(m_text.Bytes().endsWith(text), "the terminal ends with the newest text");
        Require(m_text.Bytes().size() <= bound + text.size(), "the terminal is bounded");
        Require(m_all.endsWith(m_text.Bytes()), "the terminal's text is the end of all");
        if (m_all.size() > 5000)
            Require(m_text.Bytes().size() >= 4500, "the terminal keeps what it may");
        m_all = m_all.last(std::min<qsizetype>(m_all.size(), bound + text.size()));
    }

    void Clear() {
        m_text.Clear();
        m_all.clear();
    }

    void Show() {
        const bool hasChanged = m_text.HasChanged();
        const Pane before = m_shown;
        m_shown.Apply(m_text.Take());
        Require(hasChanged || m_shown == before, "without a change nothing changes");
        Pane whole;
        whole.Append(m_text.Bytes(), m_text.Runs());
        Require(m_shown == whole, "a pane that follows the changes shows the text");
        Require(!m_text.HasChanged(), "what was taken is no change any more");
    }

private:
    TerminalText m_text;
    Pane m_shown;
    QByteArray m_all;
};

class Monitor {
public:
    void Append(QByteArrayView text) {
        m_all.append(text);
        m_text.Append(text);
        Require(m_text.Text().endsWith(text), "the monitor ends with the newest text");
        Require(static_cast<std::size_t>(m_text.Text().size()) <=
                    MonitorText::longest + static_cast<std::size_t>(text.size()),
                "the monitor is bounded");
        Require(m_all.endsWith(m_text.Text().toByteArray()), "the monitor's text is the end of all");
        Require(m_text.End() == m_all.size() && m_text.End() - m_text.Begin() == m_text.Text().size(),
                "the monitor knows its place");
    }

private:
    MonitorText m_text;
    QByteArray m_all;
};

void AppendStatus(DownloadStatus& status, const QString& text) {
    const qsizetype before = status.Content().size();
    const bool isCut = status.AddDownloadStatus(text);
    const QString line = text + QStringLiteral("\r\n");
    Require(isCut == (before > 10000), "only what is too long is cut");
    Require(status.Content().endsWith(line) && status.Content().size() <= 10000 + line.size(),
            "the status box is bounded and ends with the newest text");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    static QCoreApplication application(*count, *arguments); // takes the monitor's announcements
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input = Input(data, size);
    Terminal terminal;
    Monitor monitor;
    DownloadStatus status;
    for (int step = 0; input.size() >= 2 && step < 200; ++step) {
        const auto kind = static_cast<unsigned char>(input[0]);
        const std::size_t length = 10U * static_cast<unsigned char>(input[1]);
        input.remove_prefix(2);
        // A text longer than the input is filled up with itself.
        const std::string_view part = input.substr(0, std::min(length, std::size_t{64}));
        input.remove_prefix(part.size());
        QByteArray text;
        while (!part.empty() && static_cast<std::size_t>(text.size()) + part.size() <= length)
            text += Bytes(part);
        text.replace('\r', ' ').replace('\n', "\r\n"); // lines as they are handed over
        terminal.Append(text, static_cast<qint16>(kind % 6));
        monitor.Append(text);
        AppendStatus(status, Text::FromBytes(text));
        if (kind & 0x40U)
            terminal.Show();
        if (kind == 0xFF)
            terminal.Clear();
    }
    terminal.Show();
    return 0;
}
