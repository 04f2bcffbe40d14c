#include "host/program/Evaluator.h"

#include "host/program/Arithmetic.h"
#include "host/program/Arrays.h"
#include "host/program/Conversion.h"
#include "host/program/Types.h"
#include "host/program/ValueText.h"

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

namespace host::program {

namespace {

/// Half of the stack that this process may have: the other half is for what is below the deepest
/// call.
std::size_t usableStack() {
    constexpr rlim_t most = rlim_t{32} << 20;
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0)
        limit.rlim_cur = rlim_t{8} << 20;
    return static_cast<std::size_t>(std::min(limit.rlim_cur, most) / 2);
}

template <typename Plain>
Value made(const Plain &value) {
    if constexpr (std::is_same_v<Plain, std::string>)
        return Value(std::string_view(value));
    else if constexpr (std::is_same_v<Plain, std::monostate>)
        return {};
    else
        return value;
}

const char *stackTop() {
    return static_cast<const char *>(__builtin_frame_address(0));
}

} // namespace

/// The end of a block: its variables are given up, in the order of their declarations.
class Evaluator::Clearing {
public:
    Clearing(Frame &frame, std::size_t first, std::size_t end)
        : frame_(frame), first_(first), end_(end) {}
    ~Clearing() {
        for (std::size_t i = first_; i < end_; ++i)
            frame_.slots[i] = Value{};
    }
    Clearing(const Clearing &) = delete;
    Clearing &operator=(const Clearing &) = delete;

private:
    Frame &frame_;
    std::size_t first_;
    std::size_t end_;
};

Evaluator::Evaluator(Host &host, Settings settings)
    : host_(host), settings_(std::move(settings)), stepsLeft_(settings_.steps),
      stackLimit_(usableStack()) {}

void Evaluator::run(const Program &program, std::size_t globalCount) {
    stackBase_ = stackTop();
    globals_.slots.resize(std::max(globalCount, globals_.slots.size()));
    const auto isConstant = [](const Statement &statement) {
        return std::holds_alternative<DeclareConstant>(statement.what);
    };
    try {
        // Procedures may use what is declared behind the first call.
        for (const Statement &statement : program.main.statements)
            prepare(statement);
        for (const Statement &statement : program.main.statements)
            if (isConstant(statement))
                runStatement(statement);
        for (const Statement &statement : program.main.statements) {
            if (isConstant(statement))
                continue;
            isOutermost_ = true;
            if (runStatement(statement) != Flow::next)
                return;
        }
    } catch (Raised &raised) {
        raised.lines.push_back({.line = globals_.line});
        throw;
    }
}

/// What the program declares has a value of its type from the beginning.
void Evaluator::prepare(const Statement &statement) {
    if (const auto *constant = std::get_if<DeclareConstant>(&statement.what))
        variable(constant->slot) = initialValue(*constant->value->type);
    if (const auto *declaration = std::get_if<Declare>(&statement.what))
        for (const Variable &declared : declaration->variables)
            variable(declared.slot) =
                declared.isArray ? Value{} : initialValue(declaration->type.type);
}

void Evaluator::clear() {
    {
        const Clearing clearing(globals_, 0, globals_.slots.size());
    }
    settle();
}

void Evaluator::step() {
    if (stepsLeft_-- == 0)
        throw OutOfSteps{};
}

/// An object's end may have raised an exception, which nobody has seen yet.
void Evaluator::settle() {
    if (auto exception = host_.takePendingException())
        throw Raised{.exception = std::move(exception->object)};
}

void Evaluator::checkStack() const {
    const auto used = stackBase_ - stackTop();
    if (std::cmp_greater(used, stackLimit_))
        raise("StackOverflowException", "too many calls inside each other");
}

// Statements

Evaluator::Flow Evaluator::runBlock(const Block &block) {
    const Clearing clearing(*frame_, block.firstSlot, block.endSlot);
    for (const Statement &statement : block.statements) {
        const Flow flow = runStatement(statement);
        if (flow != Flow::next)
            return flow;
    }
    return Flow::next;
}

Evaluator::Flow Evaluator::runStatement(const Statement &statement) {
    step();
    frame_->line = statement.at.line;
    isOutermost_ = isOutermost_ && std::holds_alternative<Evaluate>(statement.what);
    const Flow flow = std::visit([&](const auto &what) { return run(what); }, statement.what);
    settle();
    return flow;
}

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
        Value value = evaluateAs(*statement.value, *target.type);
        variable(std::get<Slot>(name->meaning)) = std::move(value);
    } else if (const auto *index = std::get_if<Index>(&target.what)) {
        const Value array = evaluate(*index->target);
        const std::int64_t place =
            evaluateAs(*index->arguments.front(), simpleType(TypeKind::integer)).integer();
        const Value value = evaluateAs(*statement.value, *target.type);
        setElement(elementsOf(array), place, value);
    } else {
        const auto &member = std::get<Member>(target.what);
        assignMember(member, evaluateAs(*statement.value, *target.type));
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
    const Type elementType = elementOf(*statement.collection->type);
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

// Expressions

Value Evaluator::evaluate(const Expression &expression) {
    return std::visit([&](const auto &node) { return evaluate(node, expression); },
                      expression.what);
}

Value Evaluator::evaluateAs(const Expression &expression, const Type &type) {
    return converted(evaluate(expression), *expression.type, type);
}

Value Evaluator::operand(const Expression &expression) {
    return plain(evaluate(expression), *expression.type);
}

bool Evaluator::truthOf(const Expression &expression) {
    return evaluateAs(expression, simpleType(TypeKind::boolean)).boolean();
}

Values Evaluator::evaluateAll(const Expressions &arguments,
                              const std::vector<Parameter> &parameters) {
    Values values;
    for (std::size_t i = 0; i < arguments.size(); ++i)
        values.push_back(evaluateAs(*arguments[i], parameters[i].type));
    return values;
}

Value Evaluator::evaluate(const Literal &literal, const Expression & /*whole*/) {
    return std::visit([](const auto &value) { return made(value); }, literal.value);
}

Value Evaluator::evaluate(const Name &name, const Expression &whole) {
    if (const auto *slot = std::get_if<Slot>(&name.meaning))
        return variable(*slot);
    if (const auto *procedure = std::get_if<const Procedure *>(&name.meaning))
        return call(**procedure, name);
    if (std::holds_alternative<ArrayLiteral>(name.meaning))
        return arrayOf(name, elementOf(*whole.type));
    if (const auto *function = std::get_if<const Function *>(&name.meaning)) {
        Values values;
        const auto &parameters = (*function)->declaration.parameters;
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            const Expression &argument = *name.arguments.values[i];
            // Arrays of every type fit where one of Variants is declared.
            values.push_back(argument.type->isArray ? evaluate(argument)
                                                    : evaluateAs(argument, parameters[i].type));
        }
        return (*function)->run(values);
    }
    const HostClass &type = *std::get<Cast>(name.meaning).type;
    const Expression &object = *name.arguments.values.front();
    return converted(evaluate(object), simpleType(TypeKind::variant), typeNamed(type.name));
}

Value Evaluator::arrayOf(const Name &name, const Type &type) {
    const ObjectRef array = newArray(type, 0);
    for (const ExpressionPtr &element : name.arguments.values) {
        const Value value = evaluateAs(*element, type);
        elementsOf(array).elements.push_back(kept(elementsOf(array), value));
    }
    return array;
}

ObjectRef Evaluator::objectOf(const Member &member) {
    ObjectRef object = evaluate(*member.target).object();
    if (object.handle() == nullptr)
        raise("NilObjectException", member.name.name + " is asked of Nil");
    return object;
}

Value Evaluator::evaluate(const Member &member, const Expression & /*whole*/) {
    const Expressions &arguments = member.arguments.values;
    if (const auto *constant = std::get_if<const Constant *>(&member.meaning))
        return (*constant)->value;
    if (const auto *shared = std::get_if<SharedMethod>(&member.meaning)) {
        const MethodDeclaration &method = shared->method->parsed;
        return valueOf(host_.callShared(shared->type->name, method.name,
                                        evaluateAll(arguments, method.parameters)));
    }
    if (const auto *arrayMember = std::get_if<const ArrayMember *>(&member.meaning)) {
        const Value array = evaluate(*member.target);
        std::vector<Parameter> parameters = (*arrayMember)->declaration.parameters;
        for (Parameter &parameter : parameters)
            if (isVariant(parameter.type))
                parameter.type = elementOf(*member.target->type);
        const Values values = evaluateAll(arguments, parameters);
        return (*arrayMember)->run(elementsOf(array), values);
    }
    const ObjectRef object = objectOf(member);
    if (const auto *property = std::get_if<const Property *>(&member.meaning))
        return valueOf(host_.get(object, (*property)->name));
    const MethodDeclaration &method = std::get<const Method *>(member.meaning)->parsed;
    return valueOf(host_.call(object, method.name, evaluateAll(arguments, method.parameters)));
}

Value Evaluator::evaluate(const Index &index, const Expression &whole) {
    const Value array = evaluate(*index.target);
    const std::int64_t place =
        evaluateAs(*index.arguments.front(), simpleType(TypeKind::integer)).integer();
    return element(elementsOf(array), place, *whole.type);
}

Value Evaluator::evaluate(const Create &create, const Expression & /*whole*/) {
    Values values;
    if (create.constructor != nullptr)
        values = evaluateAll(create.arguments.values, create.constructor->parsed.parameters);
    return valueOf(host_.newObject(create.type->name, values));
}

Value Evaluator::evaluate(const Unary &unary, const Expression &whole) {
    const Value value = operand(*unary.operand);
    const bool isFitting =
        isNumber(value) || (unary.op == Operator::notBits && std::holds_alternative<bool>(value));
    if (!isFitting || (unary.op == Operator::notBits && std::holds_alternative<double>(value)))
        raise("IllegalCastException", kindOf(value) + " is no operand here");
    return converted(applied(unary.op, value), simpleType(TypeKind::variant), *whole.type);
}

Value Evaluator::evaluate(const Binary &binary, const Expression &whole) {
    const bool isTruth = isBoolean(*whole.type);
    const bool isLogic = binary.op == Operator::andBits || binary.op == Operator::orBits;
    if (isLogic && isTruth) {
        // The right side only if it decides.
        const bool left = truthOf(*binary.left);
        return left == (binary.op == Operator::orBits) ? left : truthOf(*binary.right);
    }
    const bool asksForNil =
        isNil(*binary.left->type) || isNil(*binary.right->type) || binary.op == Operator::is;
    const Value left = operand(*binary.left);
    const Value right = operand(*binary.right);
    if (asksForNil && isTruth)
        return isSame(left, right) == (binary.op != Operator::unequal);
    const Value result = applied(binary.op, left, right);
    // Operators on Variants give what their contents give.
    return isVariant(*whole.type) || isString(*whole.type)
               ? result
               : converted(result, simpleType(TypeKind::variant), *whole.type);
}

Value Evaluator::evaluate(const IsA &isA, const Expression & /*whole*/) {
    const Value value = operand(*isA.operand);
    const auto *object = std::get_if<ObjectRef>(&value);
    if (object == nullptr)
        return false;
    const HostClass *type = host_.classes().findAny(host_.className(*object));
    return type != nullptr && type->isKindOf(*isA.type);
}

// Calls of procedures

Value Evaluator::call(const Procedure &procedure, const Name &name) {
    checkStack();
    Frame frame{.slots = Values(procedure.slotCount), .procedure = &procedure};
    for (std::size_t i = 0; i < procedure.parameters.size(); ++i) {
        const ProgramParameter &parameter = procedure.parameters[i];
        const Expression &argument =
            i < name.arguments.values.size() ? *name.arguments.values[i] : *parameter.defaultValue;
        frame.slots[i] = evaluateAs(argument, parameter.type.type);
    }
    return runProcedure(procedure, frame);
}

Value Evaluator::runProcedure(const Procedure &procedure, Frame &frame) {
    struct Returning {
        Frame *&current;
        Frame *before;
        ~Returning() { current = before; }
    } const returning{frame_, std::exchange(frame_, &frame)};
    frame.line = procedure.name.at.line;
    if (procedure.result)
        frame.result = initialValue(procedure.result->type);
    try {
        runBlock(procedure.body);
    } catch (Raised &raised) {
        raised.lines.push_back({.line = frame.line, .procedure = procedure.name.name});
        throw;
    }
    return std::move(frame.result);
}

} // namespace host::program
