// The address of an element file as typed: its file name never leaves the folder.

#include "Input.h"
#include "Require.h"
#include "keps/ConvertKepsFile.h"
#include "keps/KepsAddress.h"

#include <QDir>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString typed = QString::fromUtf8(Bytes(Input(data, size)));
    const KepsAddress address = KepsAddress::FromTyped(typed);
    const auto withSlashes = [](QString text) { return text.replace(u'\\', u'/'); };
    Require(withSlashes(address.url) == QStringLiteral("http://") + withSlashes(typed.trimmed()),
            "the address is as typed");
    const QString& name = address.fileName;
    if (name.isEmpty())
        return 0;
    Require(!name.contains(u'/') && !name.contains(u'\\') && !name.contains(QChar(0)), "a name is no path");
    Require(!name.startsWith(u'.') && !name.endsWith(u'.'), "a name is neither hidden nor another folder");
    Require(name.compare(KepsFiles::WorkName(), Qt::CaseInsensitive) != 0, "our own file is not taken");
    const QByteArray onDisk = QFile::encodeName(name);
    Require(onDisk.size() <= 250, "the file systems can hold the name");
    Require(QDir::cleanPath(QStringLiteral("/a/Keps/") + name) == QStringLiteral("/a/Keps/") + name,
            "a file of this name lies in the folder");
    for (const QChar character : name)
        Require(character.unicode() >= u' ' && character != QChar(0x7F), "a name has no control characters");
    return 0;
}
