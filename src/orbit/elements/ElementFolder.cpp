#include "orbit/elements/ElementFolder.h"

#include "orbit/elements/ElementFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace orbitmath {

namespace fs = std::filesystem;

namespace {

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// The names of the regular files in a folder, in order. Links count as what they lead to; a pipe or a device
/// would never end.
std::optional<std::vector<std::string>> FilesIn(const fs::path& folder) {
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    if (error)
        return {};
    std::vector<std::string> names;
    for (const fs::directory_iterator end; entry != end; entry.increment(error)) {
        std::error_code unknown;
        if (entry->is_regular_file(unknown))
            names.push_back(entry->path().filename().string());
        if (error)
            break;
    }
    std::sort(names.begin(), names.end());
    return names;
}

void ReportDamage(const ElementFile& file, const fs::path& path, const ElementFolder::Report& report) {
    if (file.DamagedCount() == 0 || !report)
        return;
    std::string line = path.string() + ", line " + std::to_string(file.FirstDamagedLine()) + ": " +
                       std::string(file.FirstFault()) + "; element set passed over";
    if (file.DamagedCount() > 1)
        line += ", and " + std::to_string(file.DamagedCount() - 1) + " more in this file";
    report(line);
}

} // namespace

std::optional<ElementFolder> ElementFolder::Read(const std::string& path, const Report& report) {
    const std::optional<std::vector<std::string>> files = path.empty() ? std::nullopt : FilesIn(path);
    if (!files)
        return {};
    ElementFolder folder;
    folder.m_files = *files;
    for (std::size_t k = 0; k < files->size(); ++k) {
        const fs::path file = fs::path(path) / files->at(k);
        std::ifstream stream(file, std::ios::binary);
        ElementFile reader(
            [&](const Elements& elements, std::string_view name) { folder.Add(elements, name, k); });
        reader.Read(stream);
        ReportDamage(reader, file, report);
    }
    folder.IndexNames();
    return folder;
}

void ElementFolder::Add(const Elements& elements, std::string_view name, std::size_t file) {
    const auto [place, isNew] = m_byNumber.try_emplace(elements.number, m_sets.size());
    if (isNew) {
        m_sets.push_back({elements, std::string(name), file});
        return;
    }
    ElementSet& known = m_sets[place->second];
    const bool newer = elements.epochUtc > known.elements.epochUtc;
    if (newer) {
        known.elements = elements;
        known.file = file;
    }
    if (!name.empty() && (newer || known.name.empty()))
        known.name = name;
}

/// Of two objects with the same name, the one with the newer elements gets it.
void ElementFolder::IndexNames() {
    m_byName.reserve(m_sets.size());
    for (std::size_t k = 0; k < m_sets.size(); ++k) {
        if (m_sets[k].name.empty())
            continue;
        std::size_t& holder = m_byName.try_emplace(UpperCase(m_sets[k].name), k).first->second;
        if (m_sets[k].elements.epochUtc > m_sets[holder].elements.epochUtc)
            holder = k;
    }
}

const ElementSet* ElementFolder::Find(std::string_view object) const {
    if (const std::optional<std::uint32_t> number = CatalogueNumber(object)) {
        if (const auto found = m_byNumber.find(*number); found != m_byNumber.end())
            return &m_sets[found->second];
    }
    const auto found = m_byName.find(UpperCase(Trimmed(object)));
    return found != m_byName.end() ? &m_sets[found->second] : nullptr;
}

} // namespace orbitmath
