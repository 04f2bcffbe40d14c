#include "host/zkthost/Report.h"

#include "host/classes/ClassTable.h"
#include "host/classes/Inspect.h"
#include "host/core/Cocoa.h"
#include "host/language/Names.h"
#include "host/processor/Processor.h"
#include "host/zkthost/ReportText.h"
#include "host/zkthost/ValueTree.h"

#include <algorithm>
#include <map>

namespace zkthost {

namespace {

using namespace host;

constexpr std::string_view className = "NSProcessInfoZKT";
constexpr std::string_view activityClass = "NSProcessInfoActivityZKT";
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

ReportRow rowOf(RowHead head, const Outcome &outcome) {
    ReportRow row{std::move(head), {}};
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
        return {rowOf({"arguments", "String()"}, outcome)};
    std::vector<ReportRow> rows;
    for (const Value &argument : arrayElements(outcome.object()))
        rows.push_back(rowOf({"argument " + std::to_string(rows.size()), "String"},
                             Outcome{.value = argument, .exception = {}}));
    return rows;
}

/// What a Variant holds, or the object's class.
std::string contentType(const Value &value) {
    const auto *object = std::get_if<ObjectRef>(&value);
    if (object == nullptr || object->handle() == nullptr)
        return "Variant";
    const std::string type = Host::current().className(*object);
    return type == "Variant" ? std::string(nameOf(variant(*object).type)) : type;
}

/// The entries of a dictionary, sorted by key; none when there is no dictionary.
std::vector<ReportRow> entriesOf(const Outcome &dictionary) {
    std::vector<ReportRow> rows;
    if (dictionary.raised() || dictionary.isNil())
        return rows;
    for (const auto &[key, value] : dictionaryObjects(dictionary.object()))
        rows.push_back(
            rowOf({textOf(key), contentType(value)}, Outcome{.value = value, .exception = {}}));
    std::ranges::sort(rows, {}, &ReportRow::name);
    return rows;
}

/// Rows of which the names are known before the values, told as they come.
class Telling {
public:
    Telling(ReportText *text, std::string_view title, const std::vector<RowHead> &heads)
        : text_(text) {
        if (text_ != nullptr && !heads.empty())
            text_->section(title, heads);
    }
    void tell(const ReportRow &row) {
        if (text_ != nullptr)
            text_->row(row);
        rows_.push_back(row);
    }
    std::vector<ReportRow> take() { return std::move(rows_); }

private:
    ReportText *text_;
    std::vector<ReportRow> rows_;
};

std::vector<RowHead> headsOf(const std::vector<Property> &properties) {
    std::vector<RowHead> heads;
    heads.reserve(properties.size());
    for (const Property &property : properties)
        heads.push_back({property.name, describe(property.type)});
    return heads;
}

void tellProperties(Host &host, const HostClass &type, const ObjectRef &info, Report &report,
                    ReportText *text) {
    const std::vector<RowHead> heads = headsOf(type.properties);
    Telling telling(text, "Properties", heads);
    for (const RowHead &head : heads) {
        const Outcome outcome = host.get(info, head.name);
        telling.tell(rowOf(head, outcome));
        if (sameName(head.name, "environment"))
            report.environment = entriesOf(outcome);
    }
    report.properties = telling.take();
}

/// Begins an activity, looks at it, ends it and looks again.
void tellActivity(Host &host, const ObjectRef &info, Report &report, ReportText *text) {
    const HostClass *type = host.classes().find(activityClass);
    const std::vector<RowHead> properties =
        type == nullptr ? std::vector<RowHead>{} : headsOf(type->properties);
    const RowHead begin{"beginActivity", std::string(activityClass)};
    const RowHead end{"endActivity", ""};
    const RowHead after{"Handle after it", "Integer"};
    std::vector<RowHead> heads{begin, end, after};
    heads.insert(heads.end(), properties.begin(), properties.end());

    Telling telling(text, "An activity, begun and ended", heads);
    const std::int64_t options = host.constant(className, "NSActivityBackground");
    const Outcome begun = host.call(info, "beginActivity", {options, Value("showing an activity")});
    telling.tell(rowOf(begin, begun));
    if (!begun.raised() && !begun.isNil()) {
        const ObjectRef activity = begun.object();
        for (const RowHead &property : properties)
            telling.tell(rowOf(property, host.get(activity, property.name)));
        telling.tell(rowOf(end, host.call(info, "endActivity", {activity})));
        telling.tell(rowOf(after, host.get(activity, "Handle")));
    }
    report.activity = telling.take();
}

void tellSharedMethods(Host &host, const HostClass &type, Report &report, ReportText *text) {
    std::vector<RowHead> heads;
    for (const Method &method : type.sharedMethods)
        if (!sameName(method.parsed.name, sharedObject))
            heads.push_back({method.parsed.name, typeOf(method)});
    Telling telling(text, "Shared methods", heads);
    for (const RowHead &head : heads)
        telling.tell(rowOf(head, host.callShared(className, head.name)));
    report.shared = telling.take();
}

} // namespace

Report makeReport(Host &host, const Image &image, ReportText *text) {
    const HostClass *type = host.classes().find(className);
    if (type == nullptr || type->record == nullptr)
        throw UsageError(image.file().string() + ": registered no class " + std::string(className));
    const Outcome shared = host.callShared(className, sharedObject);
    Report report{.className = std::string(className),
                  .image = image.file().string(),
                  .format = image.format() == ImageFormat::machO ? "Mach-O" : "ELF",
                  .processor = std::string(processor::name),
                  .hostVersion = host.options().version,
                  .interfaceVersion = host.interfaceVersion(),
                  .foundation = foundationName(),
                  .processInfo = rowOf({"", std::string(className)}, shared).text};
    for (const Constant &constant : type->constants)
        report.constants.push_back(
            rowOf({constant.name, "Integer"}, Outcome{.value = constant.value, .exception = {}}));
    if (text != nullptr)
        text->head(report);
    if (!shared.raised() && !shared.isNil()) {
        const ObjectRef info = shared.object();
        tellProperties(host, *type, info, report, text);
        if (text != nullptr)
            text->rows("Environment", report.environment);
        report.arguments = argumentsOf(host, info);
        if (text != nullptr)
            text->rows("Arguments", report.arguments);
        tellActivity(host, info, report, text);
    }
    tellSharedMethods(host, *type, report, text);
    if (text != nullptr)
        text->rows("Constants", report.constants);
    return report;
}

Json accountAsJson(const Account &account) {
    return {{"calls", account.calls},
            {"liveObjects", account.liveObjects},
            {"liveStrings", account.liveStrings},
            {"leaks", account.leaks},
            {"violations", account.violations}};
}

std::string reportAsJson(const Report &report, const Account &account) {
    return jsonText({{"class", report.className},
                     {"image", report.image},
                     {"imageFormat", report.format},
                     {"processor", report.processor},
                     {"hostVersion", report.hostVersion ? Json(*report.hostVersion) : Json()},
                     {"interfaceVersion", report.interfaceVersion},
                     {"foundation", report.foundation},
                     {sharedObject, report.processInfo},
                     {"properties", rowsAsJson(report.properties)},
                     {"environment", rowsAsJson(report.environment)},
                     {"arguments", rowsAsJson(report.arguments)},
                     {"activity", rowsAsJson(report.activity)},
                     {"sharedMethods", rowsAsJson(report.shared)},
                     {"constants", rowsAsJson(report.constants)},
                     {"account", accountAsJson(account)}});
}

} // namespace zkthost
