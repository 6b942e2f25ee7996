#include "foundation/system/SecretInput.h"

#include <QByteArray>

#include <cstdio>
#include <termios.h>
#include <unistd.h>

namespace {

// For as long as it lives, a terminal does not show what is typed.
class HiddenTyping {
public:
    explicit HiddenTyping(const QString& prompt) {
        if (isatty(STDIN_FILENO) != 1 || tcgetattr(STDIN_FILENO, &m_before) != 0)
            return;
        std::fputs(prompt.toLocal8Bit().constData(), stderr);
        termios hidden = m_before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        m_isHidden = tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden) == 0;
    }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;
    ~HiddenTyping() {
        if (!m_isHidden)
            return;
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before);
        std::fputc('\n', stderr);
    }

private:
    termios m_before{};
    bool m_isHidden = false;
};

} // namespace

QString ReadSecretLine(const QString& prompt) {
    constexpr qsizetype longest = 4096;
    const HiddenTyping hidden(prompt);
    QByteArray line;
    char c = 0;
    while (line.size() < longest && read(STDIN_FILENO, &c, 1) == 1 && c != '\n')
        line += c;
    if (line.endsWith('\r'))
        line.chop(1);
    return QString::fromLocal8Bit(line);
}
