#include "host/zkthost/Report.h"

#include "host/classes/ClassTable.h"
#include "host/classes/Inspect.h"
#include "host/language/Names.h"
#include "host/zkthost/Columns.h"

#include <algorithm>
#include <map>

namespace zkthost {

namespace {

using namespace host;

constexpr std::string_view className = "NSProcessInfoZKT";
constexpr std::string_view sharedObject = "processInfo";

std::string typeOf(const Method &method) {
    return method.parsed.result ? describe(*method.parsed.result) : "";
}

std::string faultOf(const RaisedException &exception) {
    std::string text = "raised " + exception.className;
    if (!exception.cocoaName.empty())
        text += " (" + exception.cocoaName + ')';
    return exception.message ? text + ": " + *exception.message : text;
}

std::string textOf(const Value &value);

std::string textOf(ObjectHandle object) {
    const std::string type = Host::current().className(object);
    if (type == "Dictionary")
        return std::to_string(dictionaryEntries(object).size()) + " entries";
    if (type == "Array") {
        std::string text;
        for (const Value &element : arrayElements(object))
            text += (text.empty() ? "" : ", ") + textOf(element);
        return '(' + text + ')';
    }
    if (type == "Variant") {
        const Value content = variant(object).value;
        return content.isNil() ? "" : textOf(content); // the null string
    }
    return Host::current().name(object);
}

std::string textOf(const Value &value) {
    if (const auto *object = std::get_if<ObjectRef>(&value))
        return textOf(object->handle());
    if (const auto *string = std::get_if<StringRef>(&value))
        return Host::current().text(string->handle());
    return describe(value);
}

Json jsonOf(const Value &value);

Json jsonOf(ObjectHandle object) {
    const std::string type = Host::current().className(object);
    if (type == "Variant") {
        const Value content = variant(object).value;
        return content.isNil() ? Json("") : jsonOf(content); // the null string
    }
    if (type == "Array") {
        Json array = Json::array();
        for (const Value &element : arrayElements(object))
            array.push_back(jsonOf(element));
        return array;
    }
    if (type == "Dictionary") {
        std::map<std::string, Json> entries;
        for (const auto &[key, entry] : dictionaryObjects(object))
            entries[textOf(key)] = jsonOf(entry);
        return entries;
    }
    return Host::current().name(object);
}

Json jsonOf(const Value &value) {
    struct Convert {
        Json operator()(std::monostate) const { return nullptr; }
        Json operator()(std::int64_t number) const { return number; }
        Json operator()(std::uint64_t number) const { return number; }
        Json operator()(bool truth) const { return truth; }
        Json operator()(double number) const { return number; }
        Json operator()(const StringRef &string) const {
            return Host::current().text(string.handle());
        }
        Json operator()(const ObjectRef &object) const { return jsonOf(object.handle()); }
    };
    return std::visit(Convert{}, static_cast<const ValueAlternatives &>(value));
}

ReportRow rowOf(std::string name, std::string type, const Outcome &outcome) {
    ReportRow row{.name = std::move(name), .type = std::move(type), .text = {}};
    if (outcome.exception) {
        row.exception = faultOf(*outcome.exception);
        row.text = *row.exception;
    } else {
        row.text = row.type.empty() ? "done" : textOf(outcome.value); // no type: a procedure
        row.value = jsonOf(outcome.value);
    }
    return row;
}

Json rowsAsJson(const std::vector<ReportRow> &rows) {
    Json array = Json::array();
    for (const ReportRow &row : rows) {
        array.push_back({{"name", row.name}, {"type", row.type}, {"value", row.value}});
        if (row.exception)
            array.back()["exception"] = *row.exception;
    }
    return array;
}

std::vector<ReportRow> argumentsOf(Host &host, const ObjectRef &info) {
    const Outcome outcome = host.call(info, "arguments");
    if (outcome.raised() || outcome.isNil())
        return {rowOf("arguments", "String()", outcome)};
    std::vector<ReportRow> rows;
    for (const Value &argument : arrayElements(outcome.object()))
        rows.push_back(rowOf("argument " + std::to_string(rows.size()), "String",
                             Outcome{.value = argument, .exception = {}}));
    return rows;
}

/// The entries of a dictionary, sorted by key; none when there is no dictionary.
std::vector<ReportRow> entriesOf(const Outcome &dictionary) {
    std::vector<ReportRow> rows;
    if (dictionary.raised() || dictionary.isNil())
        return rows;
    for (const auto &[key, value] : dictionaryObjects(dictionary.object()))
        rows.push_back(rowOf(textOf(key), "Variant", Outcome{.value = value, .exception = {}}));
    std::ranges::sort(rows, {}, &ReportRow::name);
    return rows;
}

/// Begins an activity, looks at it, ends it and looks again.
std::vector<ReportRow> activityOf(Host &host, const ObjectRef &info) {
    const std::int64_t options = host.constant(className, "NSActivityBackground");
    const Outcome begun = host.call(info, "beginActivity", {options, Value("showing an activity")});
    std::vector<ReportRow> rows{rowOf("beginActivity", "NSProcessInfoActivityZKT", begun)};
    if (begun.raised() || begun.isNil())
        return rows;
    const ObjectRef activity = begun.object();
    for (const Property &property : host.classes().find(host.className(activity))->properties)
        rows.push_back(
            rowOf(property.name, describe(property.type), host.get(activity, property.name)));
    const Outcome ended = host.call(info, "endActivity", {activity});
    rows.push_back(rowOf("endActivity", "", ended));
    rows.push_back(rowOf("Handle", "Integer", host.get(activity, "Handle")));
    return rows;
}

} // namespace

Report makeReport(Host &host, const Image &image) {
    const HostClass *type = host.classes().find(className);
    if (type == nullptr || type->record == nullptr)
        throw UsageError(image.file().string() + ": registered no class " + std::string(className));
    const Outcome shared = host.callShared(className, sharedObject);
    Report report{.image = image.file().string(),
                  .format = image.format() == ImageFormat::machO ? "Mach-O" : "ELF",
                  .hostVersion = host.options().version,
                  .interfaceVersion = host.interfaceVersion(),
                  .processInfo = rowOf("", std::string(className), shared).text};
    if (!shared.raised() && !shared.isNil()) {
        const ObjectRef info = shared.object();
        for (const Property &property : type->properties) {
            const Outcome outcome = host.get(info, property.name);
            report.properties.push_back(rowOf(property.name, describe(property.type), outcome));
            if (sameName(property.name, "environment"))
                report.environment = entriesOf(outcome);
        }
        report.arguments = argumentsOf(host, info);
        report.activity = activityOf(host, info);
    }
    for (const Method &method : type->sharedMethods)
        if (!sameName(method.parsed.name, sharedObject))
            report.shared.push_back(rowOf(method.parsed.name, typeOf(method),
                                          host.callShared(className, method.parsed.name)));
    for (const Constant &constant : type->constants)
        report.constants.push_back(
            rowOf(constant.name, "Integer", Outcome{.value = constant.value, .exception = {}}));
    return report;
}

std::string reportAsText(const Report &report, bool colours) {
    const std::string strong = colours ? "\033[1m" : "";
    const std::string faint = colours ? "\033[2m" : "";
    const std::string plain = colours ? "\033[0m" : "";
    std::string text = strong + std::string(className) + plain + '\n' + faint + "  " +
                       report.image + " (" + report.format + "), interface version " +
                       std::to_string(report.interfaceVersion) + plain + "\n\n";
    text += "  " + std::string(sharedObject) + " gives " + printable(report.processInfo) + "\n";
    const auto addRows = [&](std::string_view title, const std::vector<ReportRow> &rows) {
        if (rows.empty())
            return;
        text += "\n" + strong + std::string(title) + plain + "\n";
        std::size_t nameWidth = 0;
        std::size_t typeWidth = 0;
        for (const ReportRow &row : rows) {
            nameWidth = std::max(nameWidth, displayWidth(printable(row.name)));
            typeWidth = std::max(typeWidth, displayWidth(row.type));
        }
        for (const ReportRow &row : rows)
            text += "  " + padded(printable(row.name), nameWidth + 2) + faint +
                    padded(row.type, typeWidth) + plain + "  " + printable(row.text) + "\n";
    };
    addRows("Properties", report.properties);
    addRows("Environment", report.environment);
    addRows("Arguments", report.arguments);
    addRows("An activity, begun and ended", report.activity);
    addRows("Shared methods", report.shared);
    addRows("Constants", report.constants);
    return text;
}

Json accountAsJson(const Account &account) {
    return {{"calls", account.calls},
            {"liveObjects", account.liveObjects},
            {"liveStrings", account.liveStrings},
            {"leaks", account.leaks},
            {"violations", account.violations}};
}

std::string reportAsJson(const Report &report, const Account &account) {
    return jsonText({{"class", className},
                     {"image", report.image},
                     {"imageFormat", report.format},
                     {"hostVersion", report.hostVersion ? Json(*report.hostVersion) : Json()},
                     {"interfaceVersion", report.interfaceVersion},
                     {sharedObject, report.processInfo},
                     {"properties", rowsAsJson(report.properties)},
                     {"arguments", rowsAsJson(report.arguments)},
                     {"activity", rowsAsJson(report.activity)},
                     {"sharedMethods", rowsAsJson(report.shared)},
                     {"constants", rowsAsJson(report.constants)},
                     {"account", accountAsJson(account)}});
}

} // namespace zkthost
