// A digipeater path as typed: brought into form once and for all, or refused with the piece that is wrong.

#include "Input.h"
#include "Require.h"
#include "foundation/text/QIRUtil.h"
#include "foundation/text/Text.h"
#include "station/identity/FieldRules.h"

#include <QStringList>

#include <algorithm>

namespace {

// A callsign, by the letter of its rule and not as the program checks it.
bool IsCallsign(const QString& text) {
    const QStringList parts = text.split(u'-');
    const QString& base = parts[0];
    const QString capitals = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
    if (parts.size() > 2 || base.isEmpty() || base.size() > 6 ||
        !std::ranges::all_of(base, [&](QChar c) { return capitals.contains(c); }))
        return false;
    if (parts.size() == 1)
        return true;
    for (int ssid = 0; ssid <= 15; ++ssid)
        if (parts[1] == QString::number(ssid) || parts[1] == QStringLiteral("0%1").arg(ssid).right(2))
            return true;
    return false;
}

void CheckCharacter(QChar key) {
    for (const auto& become : {QIRUtil::CallsignCharacter(key), FieldRules::ViaCharacter(key),
                               QIRUtil::DigitCharacter(key), FieldRules::PositionCharacter(key)})
        Require(!become || (*become >= u' ' && *become <= u'~' && (*become < u'a' || *become > u'z')),
                "what may be entered is ASCII, in capitals");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString typed = QString::fromUtf8(Bytes(Input(data, size)));
    const FieldRules::ViaPath via = FieldRules::NormaliseVia(typed);
    Require(via.path.isEmpty() || via.wrong.isEmpty(), "a refused path is empty");

    QString pieces = typed;
    const QStringList all = pieces.replace(u' ', u',').split(u',', Qt::SkipEmptyParts);
    const auto wrong = std::ranges::find_if_not(all, IsCallsign);
    Require(via.wrong == (wrong == all.end() ? QString() : *wrong), "the first wrong piece is named");
    if (via.wrong.isEmpty()) {
        Require(via.path.split(u',', Qt::SkipEmptyParts) == all, "the digipeaters stay, in their order");
        const FieldRules::ViaPath again = FieldRules::NormaliseVia(via.path);
        Require(again.path == via.path && again.wrong.isEmpty(), "to normalise twice changes nothing");
    }

    for (const QChar key : typed)
        CheckCharacter(key);
    Require(FieldRules::IsCallsignOrEmpty(typed) == (typed.isEmpty() || IsCallsign(typed)),
            "a callsign follows its rule");
    const auto port = FieldRules::PortOf(typed);
    Require(port != qint16{0}, "there is no port 0");
    Require(!port || !FieldRules::IsPortAvailable(typed, 4) || *port <= 4, "a port that is available exists");
    return 0;
}
