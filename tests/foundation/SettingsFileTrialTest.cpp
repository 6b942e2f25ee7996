#include "foundation/settings/clsIni.h"
#include "support/Seed.h"
#include "support/TemporaryProgramFolder.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Key {
    QString name;
    QString value;
};
struct Section {
    QString name;
    QList<Key> keys;
};

// What a settings file holds, as simply as it can be said: lists in file order, compared letter by letter.
class NaiveModel {
public:
    Key* Find(const QString& section, const QString& key) {
        for (Section& s : m_sections)
            if (s.name.toUpper() == section.toUpper())
                for (Key& k : s.keys)
                    if (k.name.toUpper() == key.toUpper())
                        return &k;
        return nullptr;
    }

    void Save(const QString& section, const QString& key, const QString& value) {
        if (Key* found = Find(section, key)) {
            *found = {key, value};
            return;
        }
        for (Section& s : m_sections)
            if (s.name.toUpper() == section.toUpper()) {
                s.keys.append({key, value});
                return;
            }
        m_sections.append({section, {{key, value}}});
    }

    void DeleteKey(const QString& section, const QString& key) {
        for (Section& s : m_sections)
            if (s.name.toUpper() == section.toUpper())
                s.keys.removeIf([&](const Key& k) { return k.name.toUpper() == key.toUpper(); });
    }

    void DeleteSection(const QString& section) {
        m_sections.removeIf([&](const Section& s) { return s.name.toUpper() == section.toUpper(); });
    }

    void SaveSection(const QString& section, const QList<std::pair<QString, QString>>& values) {
        const auto place = std::ranges::find_if(
            m_sections, [&](const Section& s) { return s.name.toUpper() == section.toUpper(); });
        if (place == m_sections.end()) {
            for (const auto& [key, value] : values)
                Save(section, key, value);
        } else if (values.isEmpty()) {
            m_sections.erase(place);
        } else {
            *place = {section, {}};
            for (const auto& [key, value] : values)
                Save(section, key, value);
        }
    }

    QList<Key> Keys(const QString& section) const {
        for (const Section& s : m_sections)
            if (s.name.toUpper() == section.toUpper())
                return s.keys;
        return {};
    }

private:
    QList<Section> m_sections;
};

// What reading makes of a value that was saved.
QString Read(const QString& saved) {
    QString value = saved.trimmed();
    if (value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"'))
        value = value.mid(1, value.size() - 2);
    return value.left(499);
}

QString Pick(QRandomGenerator& random, const QStringList& from) {
    return from.at(random.bounded(static_cast<int>(from.size())));
}

} // namespace

class SettingsFileTrialTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anySequenceOfOperationsAgreesWithANaiveModel();
    void anyFileKeepsWhatAChangeDoesNotConcern();
};

void SettingsFileTrialTest::anySequenceOfOperationsAgreesWithANaiveModel() {
    const quint32 seed = ChanceSeed();
    qInfo("QIRAN_SEED=%u", seed);
    QRandomGenerator random(seed);
    const QStringList sections{u"SETUP"_s, u"setup"_s, u"AGWPE"_s, u"C D"_s, u"é"_s};
    const QStringList keys{u"LEFT"_s, u"left"_s, u"TOP"_s, u"a b"_s, u"#x"_s, u"É"_s, u"é"_s};
    const QStringList values{u"1"_s,  QString(),     u" x "_s,     u"\"q\""_s, u"a=b"_s, u"[S]"_s,
                             u";c"_s, u"\"\"\"\""_s, u"Grüße €"_s, u"\" \""_s, u"\""_s,  QString(600, u'v')};
    for (int trial = 0; trial < 20; ++trial) {
        const TemporaryProgramFolder folder;
        clsIni ini(folder.IniFile());
        NaiveModel model;
        for (int step = 0; step < 40; ++step) {
            const QString section = Pick(random, sections);
            const QString key = Pick(random, keys);
            const QString value = Pick(random, values);
            switch (random.bounded(6)) {
            case 0:
                ini.DeleteSection(section);
                model.DeleteSection(section);
                break;
            case 1:
                ini.DeleteKey(section, key);
                model.DeleteKey(section, key);
                break;
            case 2: {
                const Key* known = model.Find(section, key);
                QCOMPARE(ini.GetIniStringWriteDefault(section, key, value),
                         known ? Read(known->value) : value);
                const bool quoted = value.startsWith(u' ') || value.endsWith(u' ');
                if (known == nullptr)
                    model.Save(section, key, quoted ? u'"' + value + u'"' : value);
                break;
            }
            case 3: {
                QList<std::pair<QString, QString>> list;
                for (int i = random.bounded(4); i > 0; --i)
                    list.append({Pick(random, keys), Pick(random, values)});
                ini.SaveSection(section, list);
                model.SaveSection(section, list);
                break;
            }
            default:
                ini.SaveIniString(section, key, value);
                model.Save(section, key, value);
            }
            for (const QString& name : sections) {
                const clsIni::KeyTable table = ini.LoadAllKeysInSection(name);
                const QList<Key> expected = model.Keys(name);
                QCOMPARE(table[0].size(), expected.size() + 1);
                for (qsizetype i = 0; i < expected.size(); ++i) {
                    QCOMPARE(table[0].at(i + 1), expected.at(i).name);
                    QCOMPARE(table[1].at(i + 1), Read(expected.at(i).value));
                }
            }
        }
    }
}

void SettingsFileTrialTest::anyFileKeepsWhatAChangeDoesNotConcern() {
    const quint32 seed = ChanceSeed();
    qInfo("QIRAN_SEED=%u", seed);
    QRandomGenerator random(seed);
    const QByteArray alphabet("[]=;\"\r\n aB\xEF\xBB\xBF\0", 15);
    for (int trial = 0; trial < 300; ++trial) {
        const TemporaryProgramFolder folder;
        QByteArray before;
        for (int i = random.bounded(200); i > 0; --i)
            before += alphabet.at(random.bounded(static_cast<int>(alphabet.size())));
        folder.Write(u"QiranDecode.INI"_s, before);
        clsIni ini(folder.IniFile());
        ini.SaveIniString(u"NEW"_s, u"key"_s, u"value"_s);
        const QByteArray after = folder.Read(u"QiranDecode.INI"_s);
        QVERIFY(after.startsWith(before));
        QCOMPARE(ini.GetIniString(u"new"_s, u"KEY"_s, u"?"_s), u"value"_s);

        ini.SaveIniString(u"B"_s, u"a"_s, u"x"_s);
        QCOMPARE(ini.GetIniString(u"B"_s, u"a"_s, u"?"_s), u"x"_s);
        ini.DeleteKey(u"B"_s, u"a"_s);
        QCOMPARE(ini.GetIniString(u"B"_s, u"a"_s, u"?"_s), u"?"_s);
        QCOMPARE(ini.GetIniString(u"new"_s, u"KEY"_s, u"?"_s), u"value"_s);
    }
}

QTEST_GUILESS_MAIN(SettingsFileTrialTest)
#include "SettingsFileTrialTest.moc"
