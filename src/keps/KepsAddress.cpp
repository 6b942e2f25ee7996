#include "keps/KepsAddress.h"

#include "keps/ConvertKepsFile.h"

#include <QRegularExpression>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>

namespace {

constexpr qsizetype longestName =
    100; // leaves room under the file systems' limit of 255 bytes for any script

QString AfterLastSeparator(const QString& text) {
    return text.mid(std::max(text.lastIndexOf(u'/'), text.lastIndexOf(u'\\')) + 1);
}

// Names that other systems keep for devices, and our own work file.
bool IsReserved(const QString& name) {
    static const QRegularExpression devices(
        QRegularExpression::anchoredPattern(QStringLiteral("(con|prn|aux|nul|com[0-9]|lpt[0-9])(\\..*)?")),
        QRegularExpression::CaseInsensitiveOption);
    return devices.match(name).hasMatch() || name.compare(KepsFiles::WorkName(), Qt::CaseInsensitive) == 0;
}

// What may stand in a folder on any system, and is neither hidden nor the folder above.
QString PlainName(const QString& text) {
    QString name = AfterLastSeparator(QUrl::fromPercentEncoding(text.toUtf8()));
    for (QChar& character : name) {
        const bool isUnseen = !character.isPrint() && !character.isSurrogate();
        if (isUnseen || QStringView(u"<>:\"|?*").contains(character))
            character = u'_';
    }
    qsizetype start = 0;
    while (start < name.size() && (name[start] == u'.' || name[start].isSpace()))
        ++start;
    name = name.mid(start, longestName);
    while (name.toUtf8().size() > longestName)
        name.chop(name.back().isLowSurrogate() ? 2 : 1);
    while (name.endsWith(u'.') || name.endsWith(u' ') || name.endsWith(QChar(0x00A0)))
        name.chop(1);
    return IsReserved(name) ? u'_' + name : name;
}

// The name of the set of elements that a query asks for; empty when it does not say.
QString NameFromQuery(const QString& query) {
    QString set;
    QString form = QStringLiteral("txt");
    const auto items = QUrlQuery(query).queryItems();
    for (const auto& [key, value] : items) {
        static const QStringList sets{QStringLiteral("GROUP"),   QStringLiteral("NAME"),
                                      QStringLiteral("CATNR"),   QStringLiteral("INTDES"),
                                      QStringLiteral("SPECIAL"), QStringLiteral("FILE")};
        if (set.isEmpty() && sets.contains(key, Qt::CaseInsensitive))
            set = value;
        if (key.compare(u"FORMAT", Qt::CaseInsensitive) == 0 && !value.isEmpty())
            form = value.toLower();
    }
    set = PlainName(set);
    return set.isEmpty() || set.contains(u'.') ? set : PlainName(set + u'.' + form);
}

} // namespace

KepsAddress KepsAddress::FromTyped(const QString& typed) {
    const QString address = typed.trimmed();
    const QString url = QStringLiteral("http://") + address;
    const qsizetype end = address.indexOf(QRegularExpression(QStringLiteral("[?#]")));
    const QString path = address.left(end); // all of it when there is no query
    if (end != -1 && address[end] == u'?') {
        if (const QString name = NameFromQuery(address.mid(end + 1).section(u'#', 0, 0)); !name.isEmpty())
            return {url, name};
    }
    const bool isHostOnly = AfterLastSeparator(path) == path;
    return {url, PlainName(isHostOnly ? path.section(u'@', -1) : path)};
}
