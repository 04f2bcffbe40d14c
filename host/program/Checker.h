#pragma once

// What can be told of a program before it runs: unknown names (with the nearest one), arguments,
// types, statements in the wrong place.

#include "host/program/ExpressionChecker.h"
#include "host/program/Syntax.h"

#include <cstddef>
#include <vector>

namespace host::program {

/// Checks texts one after the other; what one declares, the next ones see.
class Checker {
public:
    Checker(const ClassTable &classes, Form form);

    /// The errors. Without any, names and types are filled in. With some, or when the program was
    /// not wholly read, its declarations are forgotten.
    std::vector<Diagnostic> check(Program &program, bool isWhole);
    /// Variables of all programs so far.
    [[nodiscard]] std::size_t globalCount() const { return around_.scopes.globalCount(); }

private:
    void declareProcedure(Procedure &procedure);
    void checkProcedure(Procedure &procedure);
    void checkBlock(Block &block);
    void checkStatements(std::vector<Statement> &statements);
    void resolve(TypeName &name);
    Slot declare(const Identifier &name, const Type &type, bool isConstant = false);
    void loopVariable(LoopVariable &variable);

    void check(Declare &statement, Position at);
    void check(DeclareConstant &statement, Position at);
    void check(ReDim &statement, Position at);
    void check(Assign &statement, Position at);
    void check(Evaluate &statement, Position at);
    void check(If &statement, Position at);
    void check(For &statement, Position at);
    void check(ForEach &statement, Position at);
    void check(While &statement, Position at);
    void check(Exit &statement, Position at);
    void check(Return &statement, Position at);
    void check(Try &statement, Position at);
    void check(Raise &statement, Position at);
    void check(Print &statement, Position at);
    void check(Assert &statement, Position at);

    Surroundings around_;
    ExpressionChecker expressions_{around_};
    const Procedure *procedure_ = nullptr; ///< being checked; null: the program itself
    std::size_t forLoops_ = 0;
    std::size_t whileLoops_ = 0;
};

} // namespace host::program
