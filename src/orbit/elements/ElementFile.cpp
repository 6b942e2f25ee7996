#include "orbit/elements/ElementFile.h"

#include "orbit/elements/Lines.h"
#include "orbit/elements/TwoLineReader.h"

#include <filesystem>
#include <fstream>

namespace orbitmath {

namespace fs = std::filesystem;

namespace {

/// Whether a file is no text: its beginning holds a zero byte. Goes back to the beginning.
bool IsBinary(std::istream& file) {
    constexpr std::size_t beginning = 65536;
    std::string bytes(beginning, ' ');
    file.read(bytes.data(), beginning);
    file.clear();
    file.seekg(0);
    return bytes.find('\0') != std::string::npos;
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

void ReadElementFile(const std::string& path, const TakeRecord& take) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return;
    const bool isBinary = IsBinary(file);
    TwoLineReader reader([&](const ElementRecord& record) {
        ElementRecord found = record;
        found.isMeant = record.isMeant && !isBinary;
        return take(found);
    });
    ForEachLine(file, [&](std::string_view line) { return reader.TakeLine(line); });
    reader.End();
}

std::string FaultText(std::size_t line, const ElementFault& fault) {
    std::string text = "line " + std::to_string(line);
    if (fault.column > 0)
        text += ", column " + std::to_string(fault.column);
    return text + ": " + std::string(fault.what);
}

} // namespace orbitmath
