#include "orbit/elements/ElementFile.h"

#include "foundation/text/ByteOrderMark.h"
#include "orbit/elements/Lines.h"
#include "orbit/elements/OmmCsvReader.h"
#include "orbit/elements/OmmJsonReader.h"
#include "orbit/elements/OmmXmlReader.h"
#include "orbit/elements/TwoLineReader.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace orbitmath {

namespace fs = std::filesystem;

namespace {

bool IsXml(std::string_view text) {
    const auto holds = [&](std::string_view part) { return text.find(part) != std::string_view::npos; };
    return text.starts_with("<?xml") || (text.starts_with('<') && (holds("<omm") || holds(":omm")));
}

// A name line may begin with a bracket too.
bool IsJson(std::string_view text) {
    if (text.starts_with('['))
        text = Trimmed(text.substr(1));
    else if (!text.starts_with('{'))
        return false;
    if (text.starts_with('{'))
        text = Trimmed(text.substr(1));
    return text.starts_with('"') || text.starts_with('}') || text.starts_with(']');
}

ElementFormat FormatOf(std::string_view beginning) {
    const std::string_view text = Trimmed(WithoutByteOrderMark(beginning));
    if (IsXml(text))
        return ElementFormat::OmmXml;
    if (IsJson(text))
        return ElementFormat::OmmJson;
    return OmmCsvReader::IsHeader(text.substr(0, text.find('\n'))) ? ElementFormat::OmmCsv
                                                                   : ElementFormat::TwoLines;
}

/// By lines or by pieces, as the reader takes them; whether the file is cut.
template <class Reader>
bool ReadLines(std::istream& file, Reader&& reader) {
    ForEachLine(file, [&](std::string_view line) { return reader.TakeLine(line); });
    reader.End();
    return reader.IsCut();
}

template <class Reader>
bool ReadPieces(std::istream& file, Reader&& reader) {
    ForEachPiece(file, [&](std::string_view piece) { return reader.TakePiece(piece); });
    reader.End();
    return reader.IsCut();
}

ElementFileKind Read(std::istream& file, const TakeRecord& take) {
    constexpr std::size_t most = 65536;
    std::string beginning(most, ' ');
    file.read(beginning.data(), most);
    beginning.resize(static_cast<std::size_t>(file.gcount()));
    file.clear();
    file.seekg(0);
    const bool isBinary = beginning.find('\0') != std::string::npos;
    const TakeRecord takeText = [&](const ElementRecord& record) {
        ElementRecord found = record;
        found.isMeant = record.isMeant && !isBinary;
        return take(found);
    };
    ElementFileKind kind{.format = FormatOf(beginning)};
    switch (kind.format) {
    case ElementFormat::TwoLines:
        kind.isCut = ReadLines(file, TwoLineReader(takeText));
        break;
    case ElementFormat::OmmCsv:
        kind.isCut = ReadLines(file, OmmCsvReader(takeText));
        break;
    case ElementFormat::OmmJson:
        kind.isCut = ReadPieces(file, OmmJsonReader(takeText));
        break;
    case ElementFormat::OmmXml:
        kind.isCut = ReadPieces(file, OmmXmlReader(takeText));
        break;
    }
    return kind;
}

} // namespace

std::optional<std::vector<std::string>> ElementFilesIn(const std::string& folder) {
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    if (folder.empty() || error)
        return {};
    std::vector<std::string> names;
    for (const fs::directory_iterator end; entry != end; entry.increment(error)) {
        std::error_code unknown;
        std::string name = entry->path().filename().string();
        if (!name.starts_with('.') && entry->is_regular_file(unknown))
            names.push_back(std::move(name));
        if (error)
            break;
    }
    return names;
}

ElementFileKind ReadElementFile(const std::string& path, const TakeRecord& take) {
    std::ifstream file(path, std::ios::binary);
    return file ? Read(file, take) : ElementFileKind();
}

ElementFileKind ReadElementText(std::string_view text, const TakeRecord& take) {
    std::istringstream file{std::string(text)};
    return Read(file, take);
}

std::string FaultText(const ElementRecord& record, const ElementFault& fault) {
    std::string text = "line " + std::to_string(record.line);
    if (record.index > 0)
        text += ", record " + std::to_string(record.index);
    if (fault.column > 0)
        text += ", column " + std::to_string(fault.column);
    if (!fault.field.empty())
        text += ", " + std::string(fault.field);
    return text + ": " + std::string(fault.what);
}

} // namespace orbitmath
