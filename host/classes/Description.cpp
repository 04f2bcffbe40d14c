#include "host/classes/Description.h"

#include "host/classes/ClassTable.h"
#include "host/core/Json.h"

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

Json methodsAsJson(const std::vector<Method> &methods) {
    Json array = Json::array();
    for (const Method &method : methods) {
        Json parameters = Json::array();
        for (const Parameter &parameter : method.parsed.parameters)
            parameters.push_back({{"name", parameter.name}, {"type", describe(parameter.type)}});
        const auto &result = method.parsed.result;
        array.push_back({{"declaration", method.declaration},
                         {"name", method.parsed.name},
                         {"parameters", std::move(parameters)},
                         {"result", result ? Json(describe(*result)) : Json()},
                         {"flags", method.flags}});
    }
    return array;
}

Json classAsJson(const HostClass &type) {
    const PluginClassRecord &record = *type.record;
    Json properties = Json::array();
    for (const Property &property : type.properties)
        properties.push_back(
            {{"name", property.name},
             {"type", describe(property.type)},
             {"writable", property.isWritable()},
             {"fieldOffset", property.isField() ? Json(property.parameter) : Json()},
             {"flags", property.flags}});
    Json constants = Json::array();
    for (const Constant &constant : type.constants)
        constants.push_back({{"declaration", constant.declaration},
                             {"name", constant.name},
                             {"value", constant.value}});
    return {{"name", type.name},
            {"superclass", type.superclass == nullptr ? Json() : Json(type.superclass->name)},
            {"interfaceVersion", record.version},
            {"dataSize", record.dataSize},
            {"dataOffset", record.dataOffset},
            {"flags", record.flags},
            {"constructor", record.constructor != nullptr},
            {"destructor", record.destructor != nullptr},
            {"properties", std::move(properties)},
            {"methods", methodsAsJson(type.methods)},
            {"sharedMethods", methodsAsJson(type.sharedMethods)},
            {"constants", std::move(constants)}};
}

} // namespace

std::string describeClasses(const ClassTable &table, DescriptionFormat format) {
    const std::vector<const HostClass *> classes = table.registered();
    switch (format) {
    case DescriptionFormat::json:
        return jsonText(classesAsJson(table));
    case DescriptionFormat::markdown:
        return asMarkdown(classes);
    case DescriptionFormat::text:
    case DescriptionFormat::html:
        break;
    }
    return asText(classes);
}

Json classesAsJson(const ClassTable &table) {
    Json array = Json::array();
    for (const HostClass *type : table.registered())
        array.push_back(classAsJson(*type));
    return array;
}

} // namespace host
