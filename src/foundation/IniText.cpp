#include "foundation/IniText.h"

#include "foundation/Text.h"

#include <algorithm>

namespace {

constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

// The name in a "[name]" line; nothing for any other line.
std::optional<QString> HeaderName(QByteArrayView line) {
    line = line.trimmed();
    if (!line.startsWith('['))
        return std::nullopt;
    const qsizetype end = line.indexOf(']');
    return Text::FromBytes(line.sliced(1, (end < 0 ? line.size() : end) - 1)).trimmed();
}

// The key of a "key=value" line; empty for any other line.
QString KeyOf(QByteArrayView line) {
    const qsizetype equals = line.indexOf('=');
    if (equals < 0 || line.trimmed().startsWith(';'))
        return {};
    return Text::FromBytes(line.first(equals)).trimmed();
}

bool Same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QByteArray OneLine(const QString& text) {
    QByteArray bytes = Text::ToBytes(text);
    std::ranges::replace_if(
        bytes, [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    return bytes;
}

} // namespace

IniText::IniText(const QByteArray& bytes) {
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype end = bytes.indexOf('\n', at);
        const qsizetype next = end < 0 ? bytes.size() : end + 1;
        m_lines.append(bytes.sliced(at, next - at));
        at = next;
    }
}

std::optional<IniText::Range> IniText::Find(const QString& section) const {
    std::optional<qsizetype> header;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        QByteArrayView line = m_lines[i];
        if (i == 0 && line.startsWith(byteOrderMark))
            line = line.sliced(byteOrderMark.size());
        const std::optional<QString> name = HeaderName(line);
        if (name && header)
            return Range{*header, i};
        if (name && Same(*name, section.trimmed()))
            header = i;
    }
    return header ? std::optional(Range{*header, m_lines.size()}) : std::nullopt;
}

qsizetype IniText::FindKey(const Range& range, const QString& key) const {
    if (const QString name = key.trimmed(); !name.isEmpty())
        for (qsizetype i = range.first + 1; i < range.second; ++i)
            if (Same(KeyOf(m_lines[i]), name))
                return i;
    return -1;
}

std::optional<QString> IniText::Value(const QString& section, const QString& key) const {
    const std::optional<Range> range = Find(section);
    const qsizetype line = range ? FindKey(*range, key) : -1;
    if (line < 0)
        return std::nullopt;
    QByteArrayView value = QByteArrayView(m_lines[line]).sliced(m_lines[line].indexOf('=') + 1).trimmed();
    if (value.size() >= 2 && value.startsWith('"') && value.endsWith('"'))
        value = value.sliced(1, value.size() - 2);
    return Text::FromBytes(value);
}

QStringList IniText::Keys(const QString& section) const {
    QStringList keys;
    if (const std::optional<Range> range = Find(section))
        for (qsizetype i = range->first + 1; i < range->second; ++i)
            if (const QString key = KeyOf(m_lines[i]); !key.isEmpty())
                keys.append(key);
    return keys;
}

void IniText::SetValue(const QString& section, const QString& key, const QString& value) {
    const QByteArray line = OneLine(key.trimmed()) + '=' + OneLine(value) + "\r\n";
    const std::optional<Range> range = Find(section);
    if (!range) {
        EndLastLine();
        m_lines.append('[' + OneLine(section.trimmed()) + "]\r\n");
        m_lines.append(line);
        return;
    }
    if (const qsizetype found = FindKey(*range, key); found >= 0) {
        m_lines[found] = line;
        return;
    }
    qsizetype end = range->second; // a new key stands before the blank lines that end its section
    while (end > range->first + 1 && m_lines[end - 1].trimmed().isEmpty())
        --end;
    if (end == m_lines.size())
        EndLastLine();
    m_lines.insert(end, line);
}

void IniText::RemoveKey(const QString& section, const QString& key) {
    if (const std::optional<Range> range = Find(section))
        if (const qsizetype line = FindKey(*range, key); line >= 0)
            m_lines.removeAt(line);
}

void IniText::RemoveSection(const QString& section) {
    if (const std::optional<Range> range = Find(section))
        m_lines.remove(range->first, range->second - range->first);
}

void IniText::EndLastLine() {
    if (!m_lines.isEmpty() && !m_lines.last().endsWith('\n'))
        m_lines.last() += "\r\n";
}
