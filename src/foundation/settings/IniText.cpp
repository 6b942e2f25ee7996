#include "foundation/settings/IniText.h"

#include "foundation/text/ByteOrderMark.h"
#include "foundation/text/Text.h"

#include <QHash>

#include <algorithm>

namespace {

// The name in a "[name]" line; nothing for any other line.
std::optional<QString> HeaderName(QByteArrayView line) {
    line = line.trimmed();
    if (!line.startsWith('['))
        return std::nullopt;
    const qsizetype end = line.indexOf(']');
    return Text::FromBytes(line.sliced(1, (end < 0 ? line.size() : end) - 1).trimmed());
}

// The key of a "key=value" line; empty for any other line.
QString KeyOf(QByteArrayView line) {
    const qsizetype equals = line.indexOf('=');
    if (equals < 0 || line.trimmed().startsWith(';'))
        return {};
    return Text::FromBytes(line.first(equals).trimmed());
}

bool Same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// The form of a name that it shares with those, and only those, that are the same.
QString Folded(const QString& name) {
    QString folded = name;
    for (QChar& c : folded)
        c = c.toCaseFolded();
    return folded;
}

QByteArray OneLine(const QString& text) {
    QByteArray bytes = Text::ToBytes(text);
    std::ranges::replace_if(
        bytes, [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    return bytes;
}

// A name as it reads once it has been written.
QString Name(const QString& text) {
    return Text::FromBytes(OneLine(text).trimmed());
}

bool IsKey(const QString& name) {
    return !name.isEmpty() && !name.contains(u'=') && !name.startsWith(u';') && !name.startsWith(u'[');
}

QByteArray Header(const QString& section) {
    return '[' + Text::ToBytes(section) + "]\r\n";
}

QByteArray Line(const QString& key, const QString& value) {
    return Text::ToBytes(key) + '=' + OneLine(value) + "\r\n";
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
    const QString wanted = Name(section);
    std::optional<qsizetype> header;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const QByteArray& line = m_lines[i];
        const std::optional<QString> name = HeaderName(
            i > 0 ? line : QByteArrayView(WithoutByteOrderMark({line.data(), std::size_t(line.size())})));
        if (name && header)
            return Range{*header, i};
        if (name && Same(*name, wanted))
            header = i;
    }
    return header ? std::optional(Range{*header, m_lines.size()}) : std::nullopt;
}

qsizetype IniText::FindKey(const Range& range, const QString& key) const {
    if (const QString name = Name(key); !name.isEmpty())
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
    return ValueIn(line);
}

QString IniText::ValueIn(qsizetype line) const {
    QByteArrayView value = QByteArrayView(m_lines[line]).sliced(m_lines[line].indexOf('=') + 1).trimmed();
    if (value.size() >= 2 && value.startsWith('"') && value.endsWith('"'))
        value = value.sliced(1, value.size() - 2);
    return Text::FromBytes(value);
}

QList<IniText::Entry> IniText::Entries(const QString& section) const {
    QList<Entry> entries;
    QHash<QString, qsizetype> first; // where a key, its case put aside, stands first
    if (const std::optional<Range> range = Find(section))
        for (qsizetype i = range->first + 1; i < range->second; ++i)
            if (const QString key = KeyOf(m_lines[i]); !key.isEmpty()) {
                const QString folded = Folded(key);
                const qsizetype line = first.value(folded, i);
                first.insert(folded, line);
                entries.append({key, ValueIn(line)});
            }
    return entries;
}

void IniText::SetValue(const QString& section, const QString& key, const QString& value) {
    const QString name = Name(key);
    if (!IsKey(name) || section.contains(u']'))
        return;
    const QByteArray line = Line(name, value);
    const std::optional<Range> range = Find(section);
    if (!range) {
        EndLastLine();
        m_lines.append(Header(Name(section)));
        m_lines.append(line);
        return;
    }
    if (const qsizetype found = FindKey(*range, name); found >= 0) {
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
    const std::optional<Range> range = Find(section);
    if (!range)
        return;
    qsizetype end = range->second;
    for (qsizetype line = FindKey(*range, key); line >= 0; line = FindKey({range->first, end}, key)) {
        m_lines.removeAt(line);
        --end;
    }
}

void IniText::RemoveSection(const QString& section) {
    while (const std::optional<Range> range = Find(section))
        m_lines.remove(range->first, range->second - range->first);
}

void IniText::ReplaceSection(const QString& section, const QList<Entry>& entries) {
    if (section.contains(u']'))
        return;
    const std::optional<Range> old = Find(section);
    const qsizetype place = old ? old->first : m_lines.size();
    RemoveSection(section);
    QByteArrayList lines;
    QHash<QString, qsizetype> first;
    for (const auto& [key, value] : entries) {
        const QString name = Name(key);
        if (!IsKey(name))
            continue;
        const QByteArray line = Line(name, value);
        const QString folded = Folded(name);
        if (const auto found = first.constFind(folded); found != first.cend()) {
            lines[*found] = line;
        } else {
            first.insert(folded, lines.size());
            lines.append(line);
        }
    }
    if (lines.isEmpty())
        return;
    if (place == m_lines.size())
        EndLastLine();
    lines.prepend(Header(Name(section)));
    m_lines = m_lines.first(place) + lines + m_lines.sliced(place);
}

void IniText::EndLastLine() {
    if (!m_lines.isEmpty() && !m_lines.last().endsWith('\n'))
        m_lines.last() += "\r\n";
}
