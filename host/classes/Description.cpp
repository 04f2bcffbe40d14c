#include "host/classes/Description.h"

#include "host/Host.h"
#include "host/classes/ClassTable.h"

#include <llvm/Support/JSON.h>
#include <llvm/Support/raw_ostream.h>

#include <algorithm>
#include <array>

namespace host {

namespace {

/// "read-only", "read and write", "field at 8"
std::string accessOf(const Property &property) {
    if (property.isField())
        return "field at " + std::to_string(property.parameter);
    return property.isWritable() ? "read and write" : "read-only";
}

/// One table of a class, as cells: the first row is its heading.
struct Section {
    std::string title;
    std::vector<std::array<std::string, 3>> rows;
};

std::vector<Section> sectionsOf(const HostClass &type) {
    std::vector<Section> sections;
    const auto add = [&](std::string title, std::array<std::string, 3> heading) -> auto & {
        return sections.emplace_back(Section{std::move(title), {std::move(heading)}}).rows;
    };
    if (!type.properties.empty()) {
        auto &rows = add("Properties", {"Name", "Type", "Access"});
        for (const Property &property : type.properties)
            rows.push_back({property.name, describe(property.type), accessOf(property)});
    }
    const auto addMethods = [&](std::string title, const std::vector<Method> &methods) {
        if (methods.empty())
            return;
        auto &rows = add(std::move(title), {"Declaration", "Flags", ""});
        for (const Method &method : methods)
            rows.push_back({method.declaration, std::to_string(method.flags), ""});
    };
    addMethods("Methods", type.methods);
    addMethods("Shared methods", type.sharedMethods);
    if (!type.constants.empty()) {
        auto &rows = add("Constants", {"Declaration", "Value", ""});
        for (const Constant &constant : type.constants)
            rows.push_back({constant.declaration, std::to_string(constant.value), ""});
    }
    return sections;
}

std::string headline(const HostClass &type) {
    const PluginClassRecord &record = *type.record;
    return "interface version " + std::to_string(record.version) + ", " +
           std::to_string(record.dataSize) + " bytes of instance data at " +
           std::to_string(record.dataOffset) + ", flags " + std::to_string(record.flags) +
           (record.constructor != nullptr ? ", constructor" : "") +
           (record.destructor != nullptr ? ", destructor" : "");
}

std::string asText(const std::vector<const HostClass *> &classes) {
    std::string text;
    for (const HostClass *type : classes) {
        text += (text.empty() ? "" : "\n") + type->name + "\n  " + headline(*type) + '\n';
        for (const Section &section : sectionsOf(*type)) {
            text += "\n  " + section.title + '\n';
            std::array<std::size_t, 2> widths{};
            const auto first = section.rows.begin() + 1;
            for (auto row = first; row != section.rows.end(); ++row)
                for (std::size_t i = 0; i < widths.size(); ++i)
                    widths[i] = std::max(widths[i], (*row)[i].size());
            for (auto row = first; row != section.rows.end(); ++row) {
                std::string line = "    ";
                for (std::size_t i = 0; i < widths.size(); ++i)
                    line += (*row)[i] + std::string(widths[i] + 2 - (*row)[i].size(), ' ');
                line += (*row)[2];
                text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
            }
        }
    }
    return text.empty() ? "no classes\n" : text;
}

std::string asMarkdown(const std::vector<const HostClass *> &classes) {
    std::string text;
    for (const HostClass *type : classes) {
        text += (text.empty() ? "" : "\n") + ("# " + type->name) + "\n\n" + headline(*type) + ".\n";
        for (const Section &section : sectionsOf(*type)) {
            const std::size_t columns = section.rows.front()[2].empty() ? 2 : 3;
            text += "\n## " + section.title + "\n\n";
            for (const auto &row : section.rows) {
                for (std::size_t i = 0; i < columns; ++i) {
                    const bool isCode = &row != &section.rows.front() && i == 0;
                    text += "| " + (isCode ? '`' + row[i] + '`' : row[i]) + ' ';
                }
                text += "|\n";
                if (&row == &section.rows.front())
                    text += columns == 2 ? "|---|---|\n" : "|---|---|---|\n";
            }
        }
    }
    return text.empty() ? "No classes.\n" : text;
}

void writeMethods(llvm::json::OStream &json, const char *title,
                  const std::vector<Method> &methods) {
    json.attributeArray(title, [&] {
        for (const Method &method : methods)
            json.object([&] {
                json.attribute("declaration", method.declaration);
                json.attribute("name", method.parsed.name);
                json.attributeArray("parameters", [&] {
                    for (const Parameter &parameter : method.parsed.parameters)
                        json.object([&] {
                            json.attribute("name", parameter.name);
                            json.attribute("type", describe(parameter.type));
                        });
                });
                json.attribute("result", method.parsed.result
                                             ? llvm::json::Value(describe(*method.parsed.result))
                                             : llvm::json::Value(nullptr));
                json.attribute("flags", method.flags);
            });
    });
}

void writeClass(llvm::json::OStream &json, const HostClass &type) {
    const PluginClassRecord &record = *type.record;
    json.attribute("name", type.name);
    json.attribute("superclass", type.superclass == nullptr
                                     ? llvm::json::Value(nullptr)
                                     : llvm::json::Value(type.superclass->name));
    json.attribute("interfaceVersion", record.version);
    json.attribute("dataSize", record.dataSize);
    json.attribute("dataOffset", record.dataOffset);
    json.attribute("flags", record.flags);
    json.attribute("constructor", record.constructor != nullptr);
    json.attribute("destructor", record.destructor != nullptr);
    json.attributeArray("properties", [&] {
        for (const Property &property : type.properties)
            json.object([&] {
                json.attribute("name", property.name);
                json.attribute("type", describe(property.type));
                json.attribute("writable", property.isWritable());
                json.attribute("fieldOffset", property.isField()
                                                  ? llvm::json::Value(property.parameter)
                                                  : llvm::json::Value(nullptr));
                json.attribute("flags", property.flags);
            });
    });
    writeMethods(json, "methods", type.methods);
    writeMethods(json, "sharedMethods", type.sharedMethods);
    json.attributeArray("constants", [&] {
        for (const Constant &constant : type.constants)
            json.object([&] {
                json.attribute("declaration", constant.declaration);
                json.attribute("name", constant.name);
                json.attribute("value", constant.value);
            });
    });
}

std::string asJson(const std::vector<const HostClass *> &classes) {
    std::string text;
    llvm::raw_string_ostream stream(text);
    llvm::json::OStream json(stream, 2);
    json.array([&] {
        for (const HostClass *type : classes)
            json.object([&] { writeClass(json, *type); });
    });
    return text + '\n';
}

} // namespace

std::string describeClasses(const Host &host, DescriptionFormat format) {
    const std::vector<const HostClass *> classes = host.classes().registered();
    switch (format) {
    case DescriptionFormat::json:
        return asJson(classes);
    case DescriptionFormat::markdown:
        return asMarkdown(classes);
    case DescriptionFormat::text:
        break;
    }
    return asText(classes);
}

} // namespace host
