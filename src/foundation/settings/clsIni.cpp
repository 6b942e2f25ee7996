#include "foundation/settings/clsIni.h"

#include "foundation/settings/IniText.h"
#include "foundation/settings/ReplaceFile.h"

#include <QFile>
#include <QFileInfo>

#include <optional>

namespace {

constexpr qsizetype longestKeyList = 9998;
constexpr qint64 largestFile = 64 * 1024 * 1024;
constexpr QStringView absent = u"$!*%";

// The file's bytes, none where there is no file; nothing when there is one that cannot be read.
std::optional<QByteArray> ReadFile(const QString& path, QString& reason) {
    const QFileInfo info(path);
    if (!info.exists())
        return QByteArray();
    QFile file(path);
    if (!info.isFile())
        reason = QStringLiteral("it is not a file");
    else if (file.size() > largestFile)
        reason = QStringLiteral("it is too large for a settings file");
    else if (!file.open(QIODevice::ReadOnly))
        reason = file.errorString();
    else {
        QByteArray bytes = file.readAll();
        if (file.error() == QFile::NoError)
            return bytes;
        reason = file.errorString(); // half a file is none: writing it back would lose the rest
    }
    return std::nullopt;
}

IniText Load(const QString& path) {
    QString reason;
    return IniText(path.isEmpty() ? QByteArray() : ReadFile(path, reason).value_or(QByteArray()));
}

} // namespace

void clsIni::Change(const QString& file, const std::function<void(IniText&)>& change) {
    const QString& path = PathOf(file);
    if (path.isEmpty())
        return;
    QString reason;
    const std::optional<QByteArray> before = ReadFile(path, reason);
    if (!before) {
        ReportFailure(path, reason); // to write now would destroy what could not be read
        return;
    }
    IniText text(*before);
    change(text);
    const QByteArray after = text.Bytes();
    if (after == *before)
        return;
    if (const QString failure = ReplaceFile(path, after); !failure.isEmpty())
        ReportFailure(path, failure);
}

void clsIni::ReportFailure(const QString& file, const QString& reason) {
    if (const auto writeFailed = std::exchange(m_writeFailed, nullptr))
        writeFailed(file, reason);
}

void clsIni::DeleteSection(const QString& section, const QString& file) {
    Change(file, [&](IniText& text) { text.RemoveSection(section); });
}

void clsIni::DeleteKey(const QString& section, const QString& key, const QString& file) {
    Change(file, [&](IniText& text) { text.RemoveKey(section, key); });
}

bool clsIni::IsItTrue(QString& text) {
    text = text.toUpper();
    return text == u"TRUE" || text == u"YES" || text == u"1" || text == u"ON";
}

QString clsIni::TrueOrFalse(bool value) {
    return value ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
}

clsIni::KeyTable clsIni::LoadAllKeysInSection(const QString& section, const QString& file) const {
    KeyTable table{QStringList{QString()}, QStringList{QString()}};
    const IniText text = Load(PathOf(file));
    qsizetype room = longestKeyList;
    for (const auto& [key, value] : text.Entries(section)) {
        const QString name = key.left(room);
        if (name.isEmpty())
            break;
        room -= std::min(room, name.size() + 1);
        table[0].append(name);
        table[1].append(
            (name == key ? value : text.Value(section, name).value_or(QString())).left(longestValue));
    }
    return table;
}

QString clsIni::GetIniString(const QString& section, const QString& key, const QString& defaultValue,
                             const QString& file) const {
    if (PathOf(file).isEmpty())
        return {};
    return Load(PathOf(file)).Value(section, key).value_or(defaultValue).left(longestValue);
}

void clsIni::SaveIniString(const QString& section, const QString& key, const QString& value,
                           const QString& file) {
    const QString stored = value.isEmpty() ? QStringLiteral("\"\"") : value;
    Change(file, [&](IniText& text) { text.SetValue(section, key, stored); });
}

QString clsIni::GetIniStringWriteDefault(const QString& section, const QString& key,
                                         const QString& defaultValue, const QString& file) {
    QString stored = GetIniString(section, key, absent.toString(), file);
    if (stored != absent)
        return stored;
    const bool quoted = defaultValue.startsWith(u' ') || defaultValue.endsWith(u' ');
    SaveIniString(section, key, quoted ? u'"' + defaultValue + u'"' : defaultValue, file);
    return defaultValue;
}

QList<std::pair<QString, QString>> clsIni::LoadSection(const QString& section, const QString& file) const {
    QList<std::pair<QString, QString>> values = Load(PathOf(file)).Entries(section);
    for (auto& [key, value] : values)
        value.truncate(longestValue);
    return values;
}

void clsIni::SaveSection(const QString& section, const QList<std::pair<QString, QString>>& values,
                         const QString& file) {
    QList<std::pair<QString, QString>> stored = values;
    for (auto& [key, value] : stored)
        if (value.isEmpty())
            value = QStringLiteral("\"\"");
    Change(file, [&](IniText& text) { text.ReplaceSection(section, stored); });
}
