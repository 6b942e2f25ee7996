#include "orbit/elements/OmmXmlReader.h"

#include "orbit/elements/Lines.h"

#include <QXmlStreamReader>

#include <array>

namespace orbitmath {

namespace {

constexpr std::string_view message = "omm";
constexpr std::string_view opened = "<omm>";
constexpr std::string_view closed = "</omm>";

/// The last bytes of a markup as a number.
constexpr std::uint32_t Bytes(std::string_view text) {
    std::uint32_t bytes = 0;
    for (const char c : text)
        bytes = bytes << 8U | static_cast<unsigned char>(c);
    return bytes;
}

constexpr std::uint32_t threeBytes = 0xFFFFFF;
constexpr std::uint32_t twoBytes = 0xFFFF;

/// Without the prefix that says whose name it is.
std::string_view LocalName(std::string_view name) {
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

/// The name in the start of a tag, of which `skipped` bytes come before it.
std::string_view NameIn(std::string_view tag, std::size_t skipped) {
    tag.remove_prefix(skipped);
    return LocalName(tag.substr(0, tag.find_first_of(" \t\r\n/>")));
}

struct Values {
    std::array<std::string, ommKeywords.size()> texts;
    std::optional<ElementFault> fault;
};

Values ValuesIn(std::string_view text) {
    Values values;
    QXmlStreamReader reader(QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size())));
    reader.setNamespaceProcessing(false); // what a prefix stands for was said outside
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const std::string name = reader.qualifiedName().toString().toStdString();
        const std::optional<std::size_t> place = OmmPlace(LocalName(name));
        if (!place)
            continue;
        if (!values.texts[*place].empty())
            values.fault = ElementFault{.field = ommKeywords[*place], .what = "it stands there twice"};
        values.texts[*place] = Trimmed(reader.readElementText().toStdString());
    }
    if (reader.hasError())
        values.fault = ElementFault{.what = "it is no XML"};
    return values;
}

} // namespace

bool OmmXmlReader::TakePiece(std::string_view piece) {
    for (const char c : piece) {
        Take(c);
        if (!m_isWanted)
            return false;
    }
    return true;
}

void OmmXmlReader::Take(char c) {
    constexpr std::size_t longestName = 64; // of a tag, with what comes before it
    m_line += c == '\n' ? 1 : 0;
    if (m_markup.empty() && c == '<') {
        m_inside = m_text.size();
        m_length = 0;
        m_quote = 0;
    }
    if (m_isInMessage) {
        m_isTooLong = m_isTooLong || m_text.size() == longestOmm;
        if (!m_isTooLong)
            m_text += c;
    }
    if (m_markup.empty() && c != '<')
        return;
    if (m_markup.size() < longestName)
        m_markup += c;
    ++m_length;
    m_last = m_last << 8U | static_cast<unsigned char>(c);
    if (EndsMarkup(c)) {
        TakeMarkup();
        m_markup.clear();
    }
}

/// Whether the byte is the last one of the markup that is open.
bool OmmXmlReader::EndsMarkup(char c) {
    constexpr std::size_t shortestComment = 7;
    if (m_markup.starts_with("<!--"))
        return m_length >= shortestComment && (m_last & threeBytes) == Bytes("-->");
    if (m_markup.starts_with("<![CDATA["))
        return (m_last & threeBytes) == Bytes("]]>");
    if (m_markup.starts_with("<?"))
        return (m_last & twoBytes) == Bytes("?>");
    if (m_quote != 0) {
        m_quote = c == m_quote ? '\0' : m_quote;
        return false;
    }
    if ((c == '"' || c == '\'') && !m_markup.starts_with("<!"))
        m_quote = c;
    return c == '>';
}

void OmmXmlReader::TakeMarkup() {
    if (m_markup.starts_with("<!") || m_markup.starts_with("<?"))
        return;
    if (m_markup.starts_with("</")) {
        m_depth -= m_depth > 0 ? 1 : 0;
        if (m_isInMessage && NameIn(m_markup, 2) == message)
            TakeElement();
        return;
    }
    if ((m_last & twoBytes) == Bytes("/>"))
        return;
    ++m_depth;
    if (m_isInMessage || NameIn(m_markup, 1) != message)
        return;
    m_isInMessage = true;
    m_isTooLong = false;
    m_text = opened;
    m_begun = m_line;
    ++m_index;
}

void OmmXmlReader::TakeElement() {
    m_isInMessage = false;
    if (m_isTooLong) {
        Refuse("it is longer than 64 KiB");
        return;
    }
    m_text.replace(m_inside, std::string::npos, closed);
    const Values values = ValuesIn(m_text);
    OmmFields fields;
    for (std::size_t k = 0; k < fields.size(); ++k)
        fields[k] = values.texts[k];
    m_isWanted = TakeOmm(Here(), fields, values.fault, m_take);
}

void OmmXmlReader::End() {
    m_isCut = m_depth > 0 || !m_markup.empty();
    if (m_isWanted && m_isCut)
        Refuse(m_isInMessage ? "the file ends within it" : "the file ends behind it, within its list");
}

void OmmXmlReader::Refuse(std::string_view what) {
    m_isWanted = TakeOmm(Here(), {}, ElementFault{.what = what}, m_take);
}

ElementRecord OmmXmlReader::Here() const {
    return {.format = ElementFormat::OmmXml, .line = m_begun, .index = m_index, .lines = {m_text, {}, {}}};
}

} // namespace orbitmath
