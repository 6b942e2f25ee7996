#include "orbit/elements/KepsFile.h"

#include "foundation/text/Text.h"

#include <QFile>

#include <array>
#include <optional>
#include <string_view>

namespace {

constexpr qint64 maxLine = 1024;

// A line without its end, of which no more than `maxLine` bytes are kept; nothing at the end of the file.
std::optional<QByteArray> ReadLine(QFile& file) {
    std::array<char, maxLine + 1> buffer{};
    qint64 length = file.readLine(buffer.data(), buffer.size());
    if (length <= 0)
        return std::nullopt;
    QByteArray line(buffer.data(), length);
    while (!std::string_view(buffer.data(), static_cast<std::size_t>(length)).ends_with('\n')) {
        length = file.readLine(buffer.data(), buffer.size());
        if (length <= 0)
            break;
    }
    return line;
}

// The second field of a line whose first field is `first`; fields are separated by runs of spaces.
std::optional<QByteArray> SecondField(const QByteArray& line, char first) {
    const QByteArray text = line.trimmed();
    if (text.size() < 3 || text[0] != first || text[1] != ' ')
        return std::nullopt;
    qsizetype start = 1;
    while (text[start] == ' ')
        ++start;
    const qsizetype end = text.indexOf(' ', start);
    return text.mid(start, end < 0 ? -1 : end - start);
}

} // namespace

void KepsFile::ForEachGroup(const QString& path, const std::function<bool(const KepsGroup&)>& take) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QByteArray name;
    QByteArray line1;
    while (file.pos() < maxBytes) {
        const std::optional<QByteArray> line2 = ReadLine(file);
        if (!line2)
            return;
        if (const std::optional<QByteArray> number2 = SecondField(*line2, '2')) {
            const std::optional<QByteArray> number1 = SecondField(line1, '1');
            const QByteArray trimmed = name.trimmed();
            if (number1 && !trimmed.isEmpty() && !take({Text::FromBytes(trimmed), *number1, *number2}))
                return;
        }
        name = std::exchange(line1, *line2);
    }
}
