#include "orbit/elements/OmmJsonReader.h"

#include "orbit/elements/Lines.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <charconv>

namespace orbitmath {

namespace {

/// A value as the text of it; empty for what is neither text nor number. The shortest text of a number gives
/// the same number again.
std::string TextOf(const QJsonValue& value) {
    if (!value.isDouble())
        return std::string(Trimmed(value.toString().toStdString()));
    if (const qint64 whole = value.toInteger(); whole != 0) // a catalogue number has no exponent
        return std::to_string(whole);
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value.toDouble());
    return {text.data(), end.ptr};
}

} // namespace

bool OmmJsonReader::TakePiece(std::string_view piece) {
    for (const char c : piece) {
        m_line += c == '\n' ? 1 : 0;
        if (m_depth == 0)
            TakeOutside(c);
        else
            TakeInside(c);
        if (!m_isWanted)
            return false;
    }
    return true;
}

void OmmJsonReader::TakeOutside(char c) {
    if (c == '[') {
        ++m_lists;
    } else if (c == ']' && m_lists > 0) {
        --m_lists;
    } else if (c == '{') {
        m_depth = 1;
        m_text = c;
        m_isTooLong = false;
        m_begun = m_line;
        ++m_index;
    }
}

void OmmJsonReader::TakeInside(char c) {
    m_isTooLong = m_isTooLong || m_text.size() == longestOmm;
    if (!m_isTooLong)
        m_text += c;
    if (m_isInText) {
        m_isInText = m_isEscaped || c != '"';
        m_isEscaped = !m_isEscaped && c == '\\';
    } else if (c == '"') {
        m_isInText = true;
    } else if (c == '{' || c == '[') {
        ++m_depth;
    } else if ((c == '}' || c == ']') && --m_depth == 0) {
        TakeObject();
    }
}

void OmmJsonReader::TakeObject() {
    if (m_isTooLong) {
        Refuse("it is longer than 64 KiB");
        return;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(
        QByteArray::fromRawData(m_text.data(), static_cast<qsizetype>(m_text.size())), &error);
    if (error.error != QJsonParseError::NoError) {
        Refuse("it is no JSON");
        return;
    }
    const QJsonObject object = document.object();
    std::array<std::string, ommKeywords.size()> values;
    OmmFields fields;
    for (std::size_t k = 0; k < fields.size(); ++k) {
        const std::string_view keyword = ommKeywords[k];
        values[k] =
            TextOf(object.value(QLatin1StringView(keyword.data(), static_cast<qsizetype>(keyword.size()))));
        fields[k] = values[k];
    }
    m_isWanted = TakeOmm(Here(), fields, {}, m_take);
}

void OmmJsonReader::End() {
    m_isCut = m_depth > 0 || m_lists > 0;
    if (m_isWanted && m_isCut)
        Refuse(m_depth > 0 ? "the file ends within it" : "the file ends behind it, within its list");
}

void OmmJsonReader::Refuse(std::string_view what) {
    m_isWanted = TakeOmm(Here(), {}, ElementFault{.what = what}, m_take);
}

ElementRecord OmmJsonReader::Here() const {
    return {.format = ElementFormat::OmmJson, .line = m_begun, .index = m_index, .lines = {m_text, {}, {}}};
}

} // namespace orbitmath
