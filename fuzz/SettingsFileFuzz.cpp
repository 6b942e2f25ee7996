// The settings file: what is written is read back, what was there is kept, byte by byte.
//
// An input is the file as it is found, a byte 01, and changes, one a line: a sign and up to three fields
// separated by "|". "=section|key|value" sets, "-section|key" removes a key, "/section" removes a section,
// "*section|key|value" puts one entry in a section's place.

#include "Input.h"
#include "Require.h"
#include "ScratchFolder.h"
#include "foundation/settings/IniText.h"
#include "foundation/settings/clsIni.h"
#include "foundation/text/Text.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

using Names = std::pair<QString, QString>;
using Values = std::map<Names, std::optional<QString>>;

// A name as a line of the file holds it.
QString Name(QString name) {
    for (const char16_t c : {u'\0', u'\r', u'\n'})
        name.replace(QChar(c), u' ');
    return Text::FromBytes(Text::ToBytes(name).trimmed());
}

bool Same(const QString& a, const QString& b) {
    return Name(a).compare(Name(b), Qt::CaseInsensitive) == 0;
}

// Every section and key that anything in the input names.
std::set<Names> NamesIn(const QByteArray& file, std::string_view changes) {
    std::set<Names> names;
    QString section;
    for (const QByteArray& line : file.split('\n')) {
        const QString text = Text::FromBytes(line);
        if (const qsizetype open = text.indexOf(u'['); open >= 0)
            section = text.mid(open + 1).section(u']', 0, 0).trimmed();
        names.insert({section, text.section(u'=', 0, 0).trimmed()});
    }
    while (!changes.empty()) {
        std::string_view line = TakeUntil(changes, '\n').substr(0, 4096);
        line.remove_prefix(std::min<std::size_t>(1, line.size()));
        const QString name = Text::FromBytes(Bytes(TakeUntil(line, '|')));
        names.insert({name.trimmed(), Text::FromBytes(Bytes(TakeUntil(line, '|'))).trimmed()});
    }
    return names;
}

Values ValuesOf(const IniText& text, const std::set<Names>& names) {
    Values values;
    for (const Names& name : names)
        values[name] = text.Value(name.first, name.second);
    return values;
}

// A value as it reads after it was written.
QString AsRead(const QString& value) {
    QByteArray bytes = Text::ToBytes(value);
    std::ranges::replace_if(
        bytes, [](char c) { return c == '\0' || c == '\r' || c == '\n'; }, ' ');
    bytes = bytes.trimmed();
    if (bytes.size() >= 2 && bytes.startsWith('"') && bytes.endsWith('"'))
        bytes = bytes.mid(1, bytes.size() - 2);
    return Text::FromBytes(bytes);
}

bool CanBeWritten(const QString& section, const QString& key) {
    const QString name = Name(key);
    return !section.contains(u']') && !name.isEmpty() && !name.contains(u'=') && !name.startsWith(u';') &&
           !name.startsWith(u'[');
}

// All but one line of the longer text stand in the other one: no byte elsewhere has changed.
void CheckOneLineChanged(const QByteArray& before, const QByteArray& after) {
    const QByteArrayList a = before.split('\n');
    const QByteArrayList b = after.split('\n');
    const auto start = std::ranges::mismatch(a, b);
    const auto rest = std::distance(start.in1, a.end());
    Require(b.size() - a.size() >= 0 && b.size() - a.size() <= 3, "a setting adds a line, or a section");
    if (rest > 1)
        Require(std::equal(start.in1 + 1, a.end(), b.end() - (rest - 1)), "other lines keep their bytes");
}

struct Change {
    char sign = 0;
    QString section;
    QString key;
    QString value;
};

Change ReadChange(std::string_view line) {
    line = line.substr(0, 4096);
    const char sign = line.empty() ? '\0' : line.front();
    line.remove_prefix(std::min<std::size_t>(1, line.size()));
    const auto field = [&line] { return Text::FromBytes(Bytes(TakeUntil(line, '|'))); };
    const QString section = field();
    const QString key = field();
    return {sign, section, key, Text::FromBytes(Bytes(line))};
}

// Makes the change; false when there is none in the line.
bool Make(IniText& text, const Change& change) {
    switch (change.sign) {
    case '=':
        text.SetValue(change.section, change.key, change.value);
        return true;
    case '-':
        text.RemoveKey(change.section, change.key);
        return true;
    case '/':
        text.RemoveSection(change.section);
        return true;
    case '*':
        text.ReplaceSection(change.section, {{change.key, change.value}});
        return true;
    default:
        return false;
    }
}

// What the change must have done to one value; nothing when it is not the change's concern.
void CheckValue(const Change& change, const Names& names, const std::optional<QString>& before,
                const std::optional<QString>& after) {
    const bool canBeWritten = CanBeWritten(change.section, change.key);
    const bool sameSection = Same(names.first, change.section);
    const bool sameKey = sameSection && Same(names.second, change.key);
    if (change.sign == '=' && sameKey && canBeWritten)
        Require(after == AsRead(change.value), "what was written is read back");
    else if (change.sign == '-' && sameKey)
        Require(!after, "what was removed is absent");
    else if (change.sign == '/' && sameSection)
        Require(!after, "a section that was removed is absent");
    else if (change.sign == '*' && sameSection && !change.section.contains(u']'))
        Require(after == (sameKey && canBeWritten ? std::optional(AsRead(change.value)) : std::nullopt),
                "a section that was replaced holds its new entries alone");
    else
        Require(after == before, "what was there is kept");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder scratch;
    std::string_view changes = Input(data, size);
    const QByteArray found = Bytes(TakeUntil(changes, '\1')).toByteArray();
    const std::set<Names> names = NamesIn(found, changes);
    if (names.size() > 200)
        return 0; // the checks take time in proportion to names and changes

    IniText text(found);
    Require(text.Bytes() == found, "what is read is written as it was");
    const QString path = scratch.Write(QStringLiteral("QiranDecode.INI"), View(found));
    clsIni ini(path);
    for (int count = 0; !changes.empty() && count < 20; ++count) {
        const Change change = ReadChange(TakeUntil(changes, '\n'));
        const QByteArray before = text.Bytes();
        const Values old = ValuesOf(text, names);
        if (!Make(text, change))
            continue;
        text = IniText(text.Bytes()); // as another program's start would find it
        for (const auto& [name, value] : ValuesOf(text, names))
            CheckValue(change, name, old.at(name), value);
        if (change.sign == '=')
            CheckOneLineChanged(before, text.Bytes());

        if (change.sign == '=' && !change.value.isEmpty()) {
            ini.SaveIniString(change.section, change.key, change.value);
            if (CanBeWritten(change.section, change.key))
                Require(ini.GetIniString(change.section, change.key, {}) == AsRead(change.value).left(499),
                        "what was saved is read back");
        } else if (change.sign == '-') {
            ini.DeleteKey(change.section, change.key);
        }
    }
    const auto table = ini.LoadAllKeysInSection(QStringLiteral("SETUP"));
    Require(table[0].size() == table[1].size() && table[0][0].isEmpty(), "each key has its value");
    return 0;
}
