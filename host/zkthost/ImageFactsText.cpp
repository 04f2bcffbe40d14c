// The facts of an image, for people and for programs.

#include "host/zkthost/Columns.h"
#include "host/zkthost/ImageFacts.h"

#include <utility>

namespace zkthost {

namespace {

using Row = std::pair<std::string, std::string>;

std::string inWords(const std::optional<SignatureFact> &signature) {
    if (!signature)
        return "none";
    return std::string(signature->isAdHoc ? "ad hoc" : "with a certificate") +
           (signature->identifier.empty() ? "" : ", as " + signature->identifier);
}

std::vector<Row> rowsOf(const BundleFacts &bundle) {
    std::vector<Row> rows;
    if (bundle.identifier)
        rows.emplace_back("Identifier", *bundle.identifier);
    if (bundle.version)
        rows.emplace_back("Version",
                          *bundle.version + (bundle.build ? " (" + *bundle.build + ')' : ""));
    return rows;
}

std::vector<Row> rowsOf(const ImagePart &part, bool isMachO) {
    std::vector<Row> rows{{"Processor", part.processor}, {"Kind", part.kind}};
    if (part.leastSystem)
        rows.emplace_back("Least macOS", *part.leastSystem);
    if (part.builtFor)
        rows.emplace_back("Built for", "macOS " + *part.builtFor);
    if (part.identity)
        rows.emplace_back(isMachO ? "UUID" : "Build ID", *part.identity);
    if (isMachO)
        rows.emplace_back("Signature", inWords(part.signature));
    return rows;
}

std::string titleOf(const LibraryFact &library) {
    return library.name.empty() ? "from wherever they are found"
                                : library.name + (library.isWeak ? ", if it is there" : "");
}

std::string nameOf(const ImportFact &import) {
    return import.name + (import.isWeak ? " (if it is there)" : "");
}

std::vector<Row> headRows(const ImageFacts &facts) {
    std::vector<Row> rows{{"Format", facts.format}};
    if (facts.bundle)
        for (Row &row : rowsOf(*facts.bundle))
            rows.push_back(std::move(row));
    rows.emplace_back("Loaded", facts.loaded);
    return rows;
}

std::string asText(const std::vector<Row> &rows) {
    constexpr std::size_t nameWidth = 13;
    std::string text;
    for (const auto &[name, value] : rows)
        text += "  " + padded(name, nameWidth) + printable(value) + '\n';
    return text;
}

} // namespace

std::string factsAsText(const ImageFacts &facts) {
    std::string text = printable(facts.file) + '\n' + asText(headRows(facts));
    for (const ImagePart &part : facts.parts)
        text +=
            (facts.parts.size() > 1 ? "\n" : "") + asText(rowsOf(part, facts.format == "Mach-O"));
    return text;
}

std::string factsAsMarkdown(const ImageFacts &facts) {
    const std::string name = std::filesystem::path(facts.file).filename().string();
    std::vector<Row> rows = headRows(facts);
    for (const ImagePart &part : facts.parts)
        for (Row &row : rowsOf(part, facts.format == "Mach-O"))
            rows.push_back(std::move(row));
    std::string text = "# " + printable(name) + "\n\n| Fact | |\n|---|---|\n";
    for (const auto &[fact, value] : rows)
        text += "| " + fact + " | " + printable(value) + " |\n";
    return text;
}

std::string importsAsText(const ImageFacts &facts) {
    std::string text;
    for (const ImagePart &part : facts.parts) {
        text += "\nImports for " + part.processor + '\n';
        for (const LibraryFact &library : part.libraries) {
            text += "  " + printable(titleOf(library)) + '\n';
            for (const ImportFact &import : library.imports)
                text += "    " + printable(nameOf(import)) + '\n';
        }
    }
    return text;
}

std::string importsAsMarkdown(const ImageFacts &facts) {
    std::string text;
    for (const ImagePart &part : facts.parts) {
        text += "\n# Imports for " + part.processor + '\n';
        for (const LibraryFact &library : part.libraries) {
            text += "\n## " + printable(titleOf(library)) + "\n\n";
            for (const ImportFact &import : library.imports)
                text += "- `" + printable(import.name) + '`' +
                        (import.isWeak ? " (if it is there)" : "") + '\n';
        }
    }
    return text;
}

namespace {

host::Json orNull(const std::optional<std::string> &text) {
    return text ? host::Json(*text) : host::Json();
}

host::Json asJson(const LibraryFact &library) {
    host::Json imports = host::Json::array();
    for (const ImportFact &import : library.imports)
        imports.push_back({{"name", import.name}, {"weak", import.isWeak}});
    return {{"name", library.name.empty() ? host::Json() : host::Json(library.name)},
            {"weak", library.isWeak},
            {"imports", std::move(imports)}};
}

host::Json asJson(const ImagePart &part) {
    host::Json libraries = host::Json::array();
    for (const LibraryFact &library : part.libraries)
        libraries.push_back(asJson(library));
    host::Json signature;
    if (part.signature)
        signature = {{"adHoc", part.signature->isAdHoc},
                     {"identifier", part.signature->identifier}};
    return {{"processor", part.processor},
            {"kind", part.kind},
            {"leastMacOS", orNull(part.leastSystem)},
            {"builtForMacOS", orNull(part.builtFor)},
            {"identity", orNull(part.identity)},
            {"signature", std::move(signature)},
            {"libraries", std::move(libraries)}};
}

} // namespace

host::Json factsAsJson(const ImageFacts &facts) {
    host::Json parts = host::Json::array();
    for (const ImagePart &part : facts.parts)
        parts.push_back(asJson(part));
    const BundleFacts bundle = facts.bundle.value_or(BundleFacts{});
    return {{"file", facts.file},
            {"format", facts.format},
            {"loaded", facts.loaded},
            {"identifier", orNull(bundle.identifier)},
            {"version", orNull(bundle.version)},
            {"build", orNull(bundle.build)},
            {"parts", std::move(parts)}};
}

} // namespace zkthost
