#include "orbit/elements/ElementFolder.h"

#include "orbit/elements/ElementFile.h"
#include "orbit/elements/Lines.h"

#include <algorithm>
#include <filesystem>

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

/// The damaged sets of a file: where and why the first one was refused, and how many there are.
struct Damage {
    std::string first;
    std::size_t count = 0;
};

void ReportDamage(const Damage& damage, const fs::path& path, const ElementFolder::Report& report) {
    if (damage.count == 0 || !report)
        return;
    std::string line = path.string() + ", " + damage.first + "; element set passed over";
    if (damage.count > 1)
        line += ", and " + std::to_string(damage.count - 1) + " more in this file";
    report(line);
}

} // namespace

std::optional<ElementFolder> ElementFolder::Read(const std::string& path, const Report& report) {
    std::optional<std::vector<std::string>> files = ElementFilesIn(path);
    if (!files)
        return {};
    std::sort(files->begin(), files->end()); // of equal epochs, which one counts does not change
    ElementFolder folder;
    folder.m_files = std::move(*files);
    for (std::size_t k = 0; k < folder.m_files.size(); ++k) {
        const fs::path file = fs::path(path) / folder.m_files[k];
        Damage damage;
        ReadElementFile(file.string(), [&](const ElementRecord& record) {
            if (const auto* elements = std::get_if<Elements>(&record.content))
                folder.Add(record, *elements, k);
            else if (record.isMeant && damage.count++ == 0)
                damage.first = FaultText(record, std::get<ElementFault>(record.content));
            return true;
        });
        ReportDamage(damage, file, report);
    }
    folder.IndexNames();
    return folder;
}

void ElementFolder::Add(const ElementRecord& record, const Elements& elements, std::size_t file) {
    const auto [place, isNew] = m_byNumber.try_emplace(elements.number, m_sets.size());
    if (isNew) {
        m_sets.push_back({elements, std::string(record.name), file, record.line, record.format});
        return;
    }
    ElementSet& known = m_sets[place->second];
    const bool newer = elements.epochUtc > known.elements.epochUtc;
    const bool isNamed = !record.name.empty() && (newer || known.name.empty());
    std::string name = isNamed ? std::string(record.name) : std::move(known.name);
    if (newer)
        known = {elements, {}, file, record.line, record.format};
    known.name = std::move(name);
}

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
