#include "keps/KepsAddress.h"

#include "keps/ConvertKepsFile.h"

#include <QCryptographicHash>
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

// The name cut to `longest` bytes of UTF-8, but not within a character.
QString Cut(QString name, qsizetype longest) {
    name.truncate(longest);
    while (name.toUtf8().size() > longest)
        name.chop(name.back().isLowSurrogate() ? 2 : 1);
    return name;
}

// A name that is too long keeps its extension, and a check sum keeps it apart from others that begin as it
// does.
QString Shortened(const QString& name) {
    if (name.toUtf8().size() <= longestName)
        return name;
    constexpr qsizetype longestExtension = 16;
    constexpr qsizetype checkSumBytes = 4;
    const qsizetype point = name.lastIndexOf(u'.');
    QString extension = point < 0 ? QString() : name.mid(point);
    if (extension.toUtf8().size() > longestExtension)
        extension.clear();
    const QByteArray checkSum =
        QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha256).left(checkSumBytes).toHex();
    const QString end = u'_' + QString::fromLatin1(checkSum) + extension;
    return Cut(name, longestName - end.toUtf8().size()) + end;
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
    name = name.mid(start);
    while (name.endsWith(u'.') || name.endsWith(u' ') || name.endsWith(QChar(0x00A0)))
        name.chop(1);
    name = Shortened(name);
    return IsReserved(name) ? u'_' + name : name;
}

// The name of what a query asks for, with the form that it asks for as its extension.
QString NamedAs(const QString& what, const QString& form) {
    const QString name = PlainName(what);
    return name.isEmpty() || name.contains(u'.') ? name : PlainName(name + u'.' + form);
}

// The set of elements and the form that a query asks for; the set is empty when it does not say.
std::pair<QString, QString> ReadQuery(const QString& query) {
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
    return {set, form};
}

QString FileName(const QString& path, const QString& query) {
    const auto [set, form] = ReadQuery(query);
    if (QString name = NamedAs(set, form); !name.isEmpty())
        return name;
    const bool isHostOnly = AfterLastSeparator(path) == path;
    if (QString name = PlainName(isHostOnly ? path.section(u'@', -1) : path); !name.isEmpty())
        return name;
    return NamedAs(query, form);
}

} // namespace

KepsAddress KepsAddress::FromTyped(const QString& typed) {
    const QString address = typed.trimmed();
    const qsizetype end = address.indexOf(QRegularExpression(QStringLiteral("[?#]")));
    QString path = address.left(end); // all of it when there is no query
    path.replace(u'\\', u'/');
    const QString rest = end < 0 ? QString() : address.mid(end);
    const QString query = rest.startsWith(u'?') ? rest.mid(1).section(u'#', 0, 0) : QString();
    return {QStringLiteral("http://") + path + rest, FileName(path, query)};
}
