#include "host/program/Evaluator.h"

#include "host/program/Conversion.h"

#include <sys/resource.h>

#include <algorithm>
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

const char *stackTop() {
    return static_cast<const char *>(__builtin_frame_address(0));
}

} // namespace

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
        variable(constant->slot) = initialValue(constant->value->valueType());
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
