// An element file as it came from a server: its line ends are mended the same way however it is cut, once and
// for all, and it is stored under its name or, being a page, beside the folder.

#include "Input.h"
#include "Pieces.h"
#include "Require.h"
#include "ScratchFolder.h"
#include "keps/ConvertKepsFile.h"
#include "keps/KepsText.h"

#include <algorithm>

namespace {

struct Converted {
    QByteArray text;
    bool isHtml = false;

    bool operator==(const Converted&) const = default;
};

Converted Convert(std::string_view text, std::size_t longest) {
    KepsText keps;
    Converted converted;
    for (const std::string_view piece : Pieces(text, longest))
        converted.text += keps.Convert(Bytes(piece));
    converted.isHtml = keps.IsHtml();
    return converted;
}

void CheckLineEnds(const QByteArray& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        Require(text[i] != '\r' || (i + 1 < text.size() && text[i + 1] == '\n'), "no CR stands alone");
        Require(text[i] != '\n' || (i > 0 && text[i - 1] == '\r'), "no LF stands alone");
    }
}

void CheckStored(std::string_view text, const Converted& expected) {
    static const ScratchFolder scratch;
    const ProgramFolder folder(scratch.Path(), QStringLiteral("QiranDecode"));
    const QString name = QStringLiteral("amateur.txt");
    const QString stored = QStringLiteral("Keps/") + name;
    const QString page = QStringLiteral("File2.HTML");
    QFile::remove(scratch.File(stored));
    QFile::remove(scratch.File(page));
    const KepsConversion made =
        ConvertKepsFile(folder, scratch.Write(QStringLiteral("tempkeps.$$$"), text), name, 1);
    const bool isLongEnough = text.size() >= 80;
    const bool isRefused = isLongEnough && !made.converted; // a cut file, or one without elements
    Require(isLongEnough || !made.converted, "what is too short is not stored");
    Require(!isRefused || !expected.isHtml, "a page is kept, whatever it says");
    Require(made.error.isEmpty() == !(isRefused || (made.converted && expected.isHtml)),
            "a page and what is refused are told about");
    Require(scratch.Read(made.converted && expected.isHtml ? page : stored) ==
                (made.converted ? expected.text : QByteArray()),
            "the text is stored");
    Require(QFile::exists(scratch.File(page)) == (made.converted && expected.isHtml), "a page is kept apart");
    Require(!QFile::exists(KepsFiles::Work(folder)), "nothing else stays");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Input(data, size);
    const Converted whole = Convert(text, text.size() + 1);
    Require(Convert(text, 3) == whole && Convert(text, 100) == whole, "any pieces give the same");
    Require(Convert(View(whole.text), 5) == whole, "to convert twice changes nothing");
    Require(KepsText::IsHtml(whole.text) == whole.isHtml, "a page is noticed across pieces");
    CheckLineEnds(whole.text);
    QByteArray plain = whole.text;
    QByteArray source = Bytes(text).toByteArray();
    for (QByteArray* bytes : {&plain, &source})
        bytes->removeIf([](char c) { return c == '\r' || c == '\n'; });
    Require(plain == source, "nothing but line ends changes");
    CheckStored(text, whole);
    return 0;
}
