// The statements, one by one.

#include "host/classes/NativeData.h"
#include "host/program/Arithmetic.h"
#include "host/program/Arrays.h"
#include "host/program/Conversion.h"
#include "host/program/Evaluator.h"
#include "host/program/Types.h"
#include "host/program/ValueText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host::program {

Evaluator::Flow Evaluator::run(const Declare &statement) {
    for (const Variable &declared : statement.variables) {
        Type type = statement.type.type;
        type.isArray |= declared.isArray;
        if (statement.value != nullptr) {
            variable(declared.slot) = evaluateAs(*statement.value, type);
        } else if (declared.upperBound != nullptr) {
            const std::int64_t bound =
                evaluateAs(*declared.upperBound, simpleType(TypeKind::integer)).integer();
            variable(declared.slot) = newArray(elementOf(type), std::min(bound, INT64_MAX - 1) + 1);
        } else {
            variable(declared.slot) =
                type.isArray ? Value(newArray(elementOf(type), 0)) : initialValue(type);
        }
    }
    return Flow::next;
}

Evaluator::Flow Evaluator::run(const DeclareConstant &statement) {
    variable(statement.slot) = evaluate(*statement.value);
    return Flow::next;
}

Evaluator::Flow Evaluator::run(const ReDim &statement) {
    const std::int64_t bound =
        evaluateAs(*statement.variable.upperBound, simpleType(TypeKind::integer)).integer();
    resize(elementsOf(variable(statement.variable.slot)), statement.elementType,
           std::min(bound, INT64_MAX - 1) + 1);
    return Flow::next;
}

Evaluator::Flow Evaluator::run(const Assign &statement) {
    const Expression &target = *statement.target;
    if (const auto *name = std::get_if<Name>(&target.what)) {
        Value value = evaluateAs(*statement.value, target.valueType());
        variable(std::get<Slot>(name->meaning)) = std::move(value);
    } else if (const auto *index = std::get_if<Index>(&target.what)) {
        const Value array = evaluate(*index->target);
        const std::int64_t place =
            evaluateAs(*index->arguments.front(), simpleType(TypeKind::integer)).integer();
        const Value value = evaluateAs(*statement.value, target.valueType());
        setElement(elementsOf(array), place, value);
    } else {
        const auto &member = std::get<Member>(target.what);
        assignMember(member, evaluateAs(*statement.value, target.valueType()));
    }
    return Flow::next;
}

void Evaluator::assignMember(const Member &target, const Value &value) {
    const ObjectRef object = objectOf(target);
    if (const auto *property = std::get_if<const Property *>(&target.meaning)) {
        valueOf(host_.set(object, (*property)->name, value));
        return;
    }
    const Method &method = *std::get<const Method *>(target.meaning);
    Values values = evaluateAll(target.arguments.values, method.parsed.parameters);
    values.push_back(value);
    valueOf(host_.call(object, method.parsed.name, values));
}

Evaluator::Flow Evaluator::run(const Evaluate &statement) {
    const bool isOutermost = std::exchange(isOutermost_, false);
    const Value value = evaluate(*statement.expression);
    if (settings_.show && isOutermost && statement.expression->type)
        settings_.show(value, *statement.expression->type);
    return Flow::next;
}

Evaluator::Flow Evaluator::run(const If &statement) {
    for (const Branch &branch : statement.branches) {
        frame_->line = branch.condition->at.line;
        if (truthOf(*branch.condition))
            return runBlock(branch.body);
    }
    return runBlock(statement.otherwise);
}

Evaluator::Flow Evaluator::run(const For &statement) {
    const Type &type = statement.variable.type;
    const std::size_t line = frame_->line;
    const Value from = evaluateAs(*statement.from, type);
    const Value to = evaluateAs(*statement.to, type);
    const Type stepType = simpleType(isInteger(type) ? TypeKind::integer : TypeKind::real);
    Value by =
        statement.step == nullptr ? initialValue(stepType) : evaluateAs(*statement.step, stepType);
    if (statement.step == nullptr)
        by = applied(Operator::add, by, Value(1));
    if (statement.isDown)
        by = applied(Operator::negate, by);
    if (compared(by, Value(0)) == 0)
        raise("UnsupportedOperationException", "a step of 0 gets nowhere");
    const bool isDown = compared(by, Value(0)) < 0;
    Slot slot = statement.variable.slot;
    const Clearing clearing(slot.isGlobal ? globals_ : *frame_,
                            statement.variable.declared ? slot.index : 0,
                            statement.variable.declared ? slot.index + 1 : 0);
    Value now = from;
    while (isDown ? compared(now, to) >= 0 : compared(now, to) <= 0) {
        step();
        variable(slot) = now;
        const Flow flow = runBlock(statement.body);
        if (flow != Flow::next)
            return flow == Flow::exitFor ? Flow::next : flow;
        frame_->line = line;
        // The body may have changed it. Behind the last number of the type there is no next one.
        now = variable(slot);
        if (isInteger(now) && isInteger(by)) {
            const Wide next = wideOf(now) + wideOf(by);
            if (isDown ? next < wideOf(to) : next > wideOf(to))
                break;
            now = integerOf(next, type);
        } else {
            now = converted(applied(Operator::add, now, by), simpleType(TypeKind::real), type);
        }
    }
    return Flow::next;
}

Evaluator::Flow Evaluator::run(const ForEach &statement) {
    const std::size_t line = frame_->line;
    const Value array = evaluate(*statement.collection);
    const Type elementType = elementOf(statement.collection->valueType());
    const Slot slot = statement.variable.slot;
    const Clearing clearing(slot.isGlobal ? globals_ : *frame_,
                            statement.variable.declared ? slot.index : 0,
                            statement.variable.declared ? slot.index + 1 : 0);
    // The body may change the array.
    for (std::size_t i = 0; i < elementsOf(array).elements.size(); ++i) {
        step();
        frame_->line = line;
        variable(slot) =
            converted(element(elementsOf(array), static_cast<std::int64_t>(i), elementType),
                      elementType, statement.variable.type);
        const Flow flow = runBlock(statement.body);
        if (flow != Flow::next)
            return flow == Flow::exitFor ? Flow::next : flow;
    }
    return Flow::next;
}

Evaluator::Flow Evaluator::run(const While &statement) {
    const std::size_t line = frame_->line;
    while (truthOf(*statement.condition)) {
        step();
        const Flow flow = runBlock(statement.body);
        if (flow != Flow::next)
            return flow == Flow::exitWhile ? Flow::next : flow;
        frame_->line = line;
    }
    return Flow::next;
}

Evaluator::Flow Evaluator::run(const Exit &statement) {
    constexpr std::array flows{Flow::exitFor, Flow::exitWhile, Flow::leave};
    return flows.at(static_cast<std::size_t>(statement.what));
}

Evaluator::Flow Evaluator::run(const Return &statement) {
    if (statement.value != nullptr)
        // NOLINTNEXTLINE(bugprone-unchecked-optional-access): checked, a Sub returns no value
        frame_->result = evaluateAs(*statement.value, frame_->procedure->result->type);
    return Flow::leave;
}

Evaluator::Flow Evaluator::run(const Try &statement) {
    std::optional<Raised> passing;
    Flow flow = Flow::next;
    try {
        flow = runCatches(statement);
    } catch (Raised &raised) {
        passing = std::move(raised);
    }
    const std::size_t line = frame_->line;
    const Flow last = runBlock(statement.finally);
    if (last != Flow::next)
        return last;
    frame_->line = line;
    if (passing)
        throw *std::move(passing);
    return flow;
}

Evaluator::Flow Evaluator::runCatches(const Try &statement) {
    std::optional<Raised> caught;
    try {
        return runBlock(statement.body);
    } catch (Raised &raised) {
        caught = std::move(raised);
    }
    const Catch *clause = catchFor(statement, *caught);
    if (clause == nullptr)
        throw *std::move(caught);
    if (!clause->name) {
        caught.reset();
        return runBlock(clause->body);
    }
    const Slot slot = clause->slot;
    const Clearing clearing(slot.isGlobal ? globals_ : *frame_, slot.index, slot.index + 1);
    variable(slot) = std::exchange(caught->exception, {});
    return runBlock(clause->body);
}

const Catch *Evaluator::catchFor(const Try &statement, const Raised &raised) const {
    const HostClass *type = host_.classes().findAny(host_.className(raised.exception));
    const auto found = std::ranges::find_if(statement.catches, [&](const Catch &clause) {
        return type != nullptr && type->isKindOf(*clause.type);
    });
    return found == statement.catches.end() ? nullptr : &*found;
}

Evaluator::Flow Evaluator::run(const Raise &statement) {
    const Value exception = evaluateAs(*statement.exception, typeNamed("RuntimeException"));
    if (exception.isNil())
        raise("NilObjectException", "Nil is raised");
    throw Raised{.exception = exception.object()};
}

Evaluator::Flow Evaluator::run(const Print &statement) {
    std::string line;
    for (const ExpressionPtr &value : statement.values)
        line += (&value == &statement.values.front() ? "" : " ") + textOf(operand(*value));
    settings_.print(line + '\n');
    return Flow::next;
}

Evaluator::Flow Evaluator::run(const Assert &statement) {
    if (truthOf(*statement.condition))
        return Flow::next;
    std::string text = "an assertion failed";
    if (statement.text != nullptr)
        text += ": " + evaluateAs(*statement.text, simpleType(TypeKind::string)).text();
    raise("RuntimeException", text);
}

} // namespace host::program
