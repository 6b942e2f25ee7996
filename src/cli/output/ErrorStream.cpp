#include "cli/output/ErrorStream.h"

#include "cli/output/Console.h"

#include <QtGlobal>

#include <iostream>

namespace {

// Qt passes nothing along with its messages by which a handler could find its object.
void Warn(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text) {
    std::cerr << text.toLocal8Bit().constData() << std::endl;
}

} // namespace

ErrorStream::ErrorStream(Console& console)
    : m_console(console)
    , m_before(std::cerr.rdbuf(this)) {
    qInstallMessageHandler(Warn);
}

ErrorStream::~ErrorStream() {
    qInstallMessageHandler(nullptr);
    std::cerr.rdbuf(m_before);
}

ErrorStream::int_type ErrorStream::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof()))
        return traits_type::not_eof(character);
    if (character != '\n') {
        m_line += traits_type::to_char_type(character);
        return character;
    }
    QString line = QString::fromLocal8Bit(m_line);
    m_line.clear();
    const QString windowed = QStringLiteral("QiranDecode: ");
    if (line.startsWith(windowed)) // Console::Say names this program
        line.remove(0, windowed.size());
    m_console.Say(line);
    return character;
}
