#include "host/zkthost/Call.h"

#include "host/classes/ClassTable.h"
#include "host/classes/Inspect.h"
#include "host/language/EditDistance.h"
#include "host/language/Names.h"
#include "host/zkthost/Expression.h"
#include "host/zkthost/Options.h"

#include <algorithm>
#include <utility>

namespace zkthost {

namespace {

using namespace host;

constexpr std::string_view mainClass = "NSProcessInfoZKT";

/// A host exception ends the evaluation.
struct Raised {
    RaisedException exception;
};

struct Typed {
    Value value;
    std::string type; ///< "" after a procedure
};

Value valueOf(Outcome outcome) {
    if (outcome.exception)
        throw Raised{std::move(*outcome.exception)};
    return std::move(outcome.value);
}

std::string resultType(const Method &method) {
    return method.parsed.result ? describe(*method.parsed.result) : "";
}

/// Names of a class's members, those of its instances or its own.
std::vector<std::string> memberNames(const HostClass &type, bool ofInstances) {
    std::vector<std::string> names;
    if (ofInstances) {
        for (const Property &property : type.properties)
            names.push_back(property.name);
        for (const Method &method : type.methods)
            names.push_back(method.parsed.name);
    }
    for (const Method &method : type.sharedMethods)
        names.push_back(method.parsed.name);
    for (const Constant &constant : type.constants)
        names.push_back(constant.name);
    return names;
}

[[noreturn]] void noMember(const HostClass &type, const Member &member, bool ofInstances) {
    // The right name with the wrong number of arguments.
    for (const auto *methods : {&type.methods, &type.sharedMethods})
        for (const Method &method : *methods)
            if (sameName(method.parsed.name, member.name) &&
                (ofInstances || methods == &type.sharedMethods))
                throw InputError(std::to_string(member.arguments.size()) + " arguments for " +
                                 type.name + '.' + describe(method.parsed));
    if (!member.arguments.empty() && type.property(member.name) != nullptr)
        throw InputError(type.name + '.' + member.name + " is a property and takes no arguments");

    const std::vector<std::string> names = memberNames(type, ofInstances);
    const auto distance = [&](const std::string &name) {
        return editDistance(foldedName(name), foldedName(member.name));
    };
    const auto nearest = std::ranges::min_element(names, {}, distance);
    throw InputError(type.name + " has no member " + member.name +
                     (nearest == names.end() ? "" : "; the nearest is " + *nearest));
}

class Evaluator {
public:
    explicit Evaluator(Host &host) : host_(host) {}

    Typed evaluate(const Expression &expression) {
        if (expression.literal)
            return literal(*expression.literal);
        auto next = expression.chain.begin();
        const HostClass *named = host_.classes().find(next->name);
        if (expression.isNew && named == nullptr)
            throw InputError("the host knows no class " + next->name);

        Typed current;
        if (expression.isNew) {
            current = {valueOf(host_.newObject(named->name, values(next->arguments))), named->name};
            ++next;
        } else if (named != nullptr && expression.chain.size() > 1) {
            ++next;
            current = ofClass(*named, *next++);
        } else {
            current = {valueOf(host_.callShared(mainClass, "processInfo")), std::string(mainClass)};
        }
        for (; next != expression.chain.end(); ++next) {
            const bool isLast = std::next(next) == expression.chain.end();
            current = isLast && expression.assigned ? assign(current, *next, *expression.assigned)
                                                    : ofObject(current, *next);
        }
        return current;
    }

private:
    Typed literal(const Literal &literal) {
        if (const auto *text = std::get_if<std::string>(&literal))
            return {host_.makeString(*text), "String"};
        if (const auto *number = std::get_if<std::int64_t>(&literal))
            return {*number, "Integer"};
        if (const auto *real = std::get_if<double>(&literal))
            return {*real, "Double"};
        if (const auto *truth = std::get_if<bool>(&literal))
            return {*truth, "Boolean"};
        return {{}, "Variant"};
    }

    Values values(const std::vector<Expression> &arguments) {
        Values result;
        for (const Expression &argument : arguments)
            result.push_back(evaluate(argument).value);
        return result;
    }

    /// A constant or shared method; false when the class has none of that name.
    bool shared(const HostClass &type, const Member &member, Typed &result) {
        if (const Constant *constant = type.constant(member.name);
            constant != nullptr && member.arguments.empty()) {
            result = {constant->value, "Integer"};
            return true;
        }
        const Method *method = type.sharedMethod(member.name, member.arguments.size());
        if (method == nullptr)
            return false;
        result = {valueOf(host_.callShared(type.name, member.name, values(member.arguments))),
                  resultType(*method)};
        return true;
    }

    Typed ofClass(const HostClass &type, const Member &member) {
        Typed result;
        if (shared(type, member, result))
            return result;
        if (type.property(member.name) != nullptr ||
            type.method(member.name, member.arguments.size()) != nullptr)
            throw InputError(member.name + " belongs to instances: New " + type.name + '.' +
                             member.name);
        noMember(type, member, false);
    }

    const HostClass &classOf(const Typed &target, const Member &member) {
        const auto *object = std::get_if<ObjectRef>(&target.value);
        const HostClass *type =
            object != nullptr ? host_.classes().find(host_.className(object->handle())) : nullptr;
        if (type == nullptr)
            throw InputError(member.name + " is asked of " + describe(target.value) +
                             ", which has no members");
        return *type;
    }

    Typed ofObject(const Typed &target, const Member &member) {
        const HostClass &type = classOf(target, member);
        const ObjectRef object = target.value.object();
        if (const Property *property = type.property(member.name);
            property != nullptr && member.arguments.empty())
            return {valueOf(host_.get(object, member.name)), describe(property->type)};
        if (const Method *method = type.method(member.name, member.arguments.size()))
            return {call(type, *method, object, values(member.arguments)), resultType(*method)};
        Typed result;
        if (shared(type, member, result))
            return result;
        noMember(type, member, true);
    }

    /// Arguments of other types than declared are told with the declaration.
    Value call(const HostClass &type, const Method &method, const ObjectRef &object,
               const Values &arguments) {
        try {
            return valueOf(host_.call(object, method.parsed.name, arguments));
        } catch (const UsageError &error) {
            throw InputError(type.name + '.' + describe(method.parsed) + ": " + error.what());
        }
    }

    Typed assign(const Typed &target, const Member &member, const Expression &assigned) {
        const HostClass &type = classOf(target, member);
        if (type.property(member.name) == nullptr)
            noMember(type, member, true);
        valueOf(host_.set(target.value.object(), member.name, evaluate(assigned).value));
        return {};
    }

    Host &host_;
};

std::string inWords(const Value &value) {
    const auto *object = std::get_if<ObjectRef>(&value);
    if (object == nullptr || Host::current().className(object->handle()) != "Array")
        return describe(value);
    std::string text;
    for (const Value &element : arrayElements(object->handle()))
        text += (text.empty() ? "" : ", ") + describe(element);
    return '(' + text + ')';
}

} // namespace

std::string inWords(const host::RaisedException &exception) {
    std::string text = exception.className;
    if (!exception.cocoaName.empty())
        text += " (" + exception.cocoaName + ')';
    if (exception.message)
        text += ": " + *exception.message;
    return text + ", error number " + std::to_string(exception.errorNumber);
}

CallResult evaluate(Host &host, std::string_view expression) {
    const Expression parsed = parseExpression(expression);
    try {
        const Typed result = Evaluator(host).evaluate(parsed);
        if (result.type.empty())
            return {.text = "no result"};
        // A program cannot tell a nil string from an empty one.
        const bool isEmptyString = result.value.isNil() && result.type == "String";
        return {.text = (isEmptyString ? "\"\"" : inWords(result.value)) + " As " + result.type};
    } catch (const Raised &raised) {
        return {.text = inWords(raised.exception), .raised = true};
    }
}

} // namespace zkthost
