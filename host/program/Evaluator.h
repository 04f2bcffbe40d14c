#pragma once

// Runs checked programs.

#include "host/Host.h"
#include "host/program/ArrayMembers.h"
#include "host/program/Functions.h"
#include "host/program/Raised.h"
#include "host/program/Syntax.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <string_view>

namespace host::program {

/// The program took more steps than it was allowed; no program can catch it.
struct OutOfSteps {};

struct Settings {
    /// What Print writes, lines with their ends.
    std::function<void(std::string_view)> print;
    /// Gets the value of each expression that stands for itself in a typed line; may be empty.
    std::function<void(const Value &, const Type &)> show = {};
    /// Statements and turns of loops. OutOfSteps is thrown behind the last.
    std::size_t steps = std::numeric_limits<std::size_t>::max();
};

class Evaluator {
public:
    Evaluator(Host &host, Settings settings);

    /// The variables of the program itself stay, for the next program. Throws Raised, with the
    /// lines that were being run.
    void run(const Program &program, std::size_t globalCount);
    /// Gives up all variables. Throws Raised for what a destructor raises.
    void clear();

private:
    enum class Flow { next, exitFor, exitWhile, leave };
    struct Frame {
        std::vector<Value> slots = {};
        std::size_t line = 0;
        Value result = {};
        const Procedure *procedure = nullptr;
    };
    /// The end of a block: its variables are given up, in the order of their declarations.
    class Clearing {
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

    // Statements
    void prepare(const Statement &statement);
    Flow runBlock(const Block &block);
    Flow runStatement(const Statement &statement);
    Flow run(const Declare &statement);
    Flow run(const DeclareConstant &statement);
    Flow run(const ReDim &statement);
    Flow run(const Assign &statement);
    Flow run(const Evaluate &statement);
    Flow run(const If &statement);
    Flow run(const For &statement);
    Flow run(const ForEach &statement);
    Flow run(const While &statement);
    Flow run(const Exit &statement);
    Flow run(const Return &statement);
    Flow run(const Try &statement);
    Flow run(const Raise &statement);
    Flow run(const Print &statement);
    Flow run(const Assert &statement);

    Flow runCatches(const Try &statement);
    [[nodiscard]] const Catch *catchFor(const Try &statement, const Raised &raised) const;
    void assignMember(const Member &target, const Value &value);

    // Expressions
    Value evaluate(const Expression &expression);
    Value evaluate(const Literal &literal, const Expression &whole);
    Value evaluate(const Name &name, const Expression &whole);
    Value evaluate(const Member &member, const Expression &whole);
    Value evaluate(const Index &index, const Expression &whole);
    Value evaluate(const Create &create, const Expression &whole);
    Value evaluate(const Unary &unary, const Expression &whole);
    Value evaluate(const Binary &binary, const Expression &whole);
    Value evaluate(const IsA &isA, const Expression &whole);
    Value evaluateAs(const Expression &expression, const Type &type);
    /// What operators work on.
    Value operand(const Expression &expression);
    bool truthOf(const Expression &expression);
    Values evaluateAll(const Expressions &arguments, const std::vector<Parameter> &parameters);
    ObjectRef objectOf(const Member &member);
    Value arrayOf(const Name &name, const Type &type);
    Value call(const Procedure &procedure, const Name &name);
    Value runProcedure(const Procedure &procedure, Frame &frame);

    Value &variable(const Slot &slot) {
        return (slot.isGlobal ? globals_ : *frame_).slots[slot.index];
    }
    void step();
    void settle();
    void checkStack() const;

    Host &host_;
    Settings settings_;
    Frame globals_;
    Frame *frame_ = &globals_;
    bool isOutermost_ = false; ///< the statement stands in no block and no procedure
    std::size_t stepsLeft_;
    const char *stackBase_ = nullptr;
    std::size_t stackLimit_;
};

} // namespace host::program
