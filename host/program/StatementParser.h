#pragma once

#include "host/program/ExpressionParser.h"
#include "host/program/Parser.h"
#include "host/program/TokenReader.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace host::program {

/// A block that is being read.
struct Opened {
    std::string_view word;
    Position at;
    /// What may stand where it ends: the last closes it.
    std::vector<std::string_view> ends;

    [[nodiscard]] bool hasEnd(std::string_view end) const {
        return std::ranges::find(ends, end) != ends.end();
    }
};

/// Reads a whole program.
class StatementParser {
public:
    StatementParser(std::string_view text, Form form)
        : tokens_(text), expressions_(tokens_), form_(form) {}

    Parsed all();

private:
    // Errors do not end the parser and come in any order.
    void report(Diagnostic diagnostic) { parsed_.errors.push_back(std::move(diagnostic)); }
    template <typename Body>
    bool reporting(Body body);
    void expectStatementEnd();
    [[nodiscard]] bool atStatementEnd() const {
        return tokens_.atLineEnd() ||
               (onOneLine_ && (tokens_.next().isName("Else") || tokens_.next().isName("ElseIf")));
    }

    // Blocks
    [[nodiscard]] std::string_view endHere() const;
    void takeEnd(std::string_view end);
    [[nodiscard]] bool startsProcedure() const {
        return tokens_.next().isName("Sub") || tokens_.next().isName("Function");
    }
    void statements(Block &block);
    Block body(const Opened &opened);
    bool close(const Opened &opened);

    // Statements, after their first word
    void statement(Block &block);
    void noForeignStatement();
    Statement simpleStatement();
    Statement blockStatement(const Token &word);
    Declare declare();
    Variable variable();
    TypeName typeName();
    DeclareConstant declareConstant();
    ReDim reDim();
    Exit exitStatement();
    Statement callOrAssignment();
    [[nodiscard]] bool isOneLineIf() const;
    void oneLineIf(If &result);
    Block oneLineBlock();
    If ifStatement(Position at);
    Statement forStatement(Position at);
    void count(For &loop);
    While whileStatement(Position at);
    Try tryStatement(Position at);
    Catch catchClause();
    void procedure(bool isFunction);
    ProgramParameter parameter();

    TokenReader tokens_;
    ExpressionParser expressions_;
    Form form_;
    Parsed parsed_;
    std::vector<Opened> opened_;
    std::size_t openAtEnd_ = 0; ///< blocks, each an error
    std::size_t nesting_ = 0;
    bool onOneLine_ = false; ///< inside a one-line If
    bool isClosed_ = true;   ///< the block that was read last
};

template <typename Body>
bool StatementParser::reporting(Body body) {
    try {
        body();
        return true;
    } catch (const SyntaxError &error) {
        report(error.diagnostic);
        tokens_.skipLine();
        return false;
    }
}

} // namespace host::program
