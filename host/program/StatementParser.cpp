// Statements without blocks.

#include "host/program/StatementParser.h"

#include <array>
#include <string>

namespace host::program {

namespace {

/// Statements of other languages of this kind, and what serves here.
struct Foreign {
    std::string_view word;
    std::string_view instead;
};

constexpr std::array foreignStatements{
    Foreign{"Select", "If ... ElseIf ... End If"},
    Foreign{"Do", "While ... Wend"},
    Foreign{"Loop", "Wend"},
    Foreign{"Var", "Dim"},
    Foreign{"Let", "the assignment alone"},
    Foreign{"Call", "the call alone"},
    Foreign{"MsgBox", "Print"},
    Foreign{"Continue", "If"},
    Foreign{"Throw", "Raise"},
    Foreign{"Goto", "a loop or a Sub"},
};

} // namespace

void StatementParser::expectStatementEnd() {
    if (!atStatementEnd())
        tokens_.failExpecting("the end of the statement");
}

Parsed StatementParser::all() {
    reporting([&] { statements(parsed_.program.main); });
    parsed_.isIncomplete = openAtEnd_ > 0 && openAtEnd_ == parsed_.errors.size();
    return std::move(parsed_);
}

void StatementParser::noForeignStatement() {
    const Token &after = tokens_.afterNext();
    if (after.isSymbol("=") || after.isSymbol(".") || after.isSymbol("("))
        return;
    for (const auto &[word, instead] : foreignStatements)
        if (tokens_.next().isName(word))
            throw SyntaxError{{tokens_.next().at, std::string(word) +
                                                      " is no statement of this language; " +
                                                      std::string(instead) + " serves"}};
}

void StatementParser::statement(Block &block) {
    const Token word = tokens_.next();
    isClosed_ = true;
    if (startsProcedure()) {
        if (onOneLine_)
            report({word.at, std::string(word.written) + " has a block and stands on a line of "
                                                         "its own"});
        tokens_.take();
        procedure(word.isName("Function"));
    } else if (word.isName("If") || word.isName("For") || word.isName("While") ||
               word.isName("Try")) {
        block.statements.push_back(blockStatement(word));
    } else if (tokens_.acceptWord("Dim")) {
        do
            block.statements.push_back({word.at, declare()});
        while (tokens_.acceptSymbol(","));
    } else {
        Statement made = simpleStatement();
        expectStatementEnd();
        block.statements.push_back(std::move(made));
        return;
    }
    // What stands where a block was not closed may be the end of another one.
    if (isClosed_)
        reporting([&] { expectStatementEnd(); });
}

Statement StatementParser::simpleStatement() {
    noForeignStatement();
    const Position at = tokens_.next().at;
    const auto made = [at](auto what) { return Statement{at, std::move(what)}; };
    if (tokens_.acceptWord("Const"))
        return made(declareConstant());
    if (tokens_.acceptWord("ReDim"))
        return made(reDim());
    if (tokens_.acceptWord("Exit"))
        return made(exitStatement());
    if (tokens_.acceptWord("Return"))
        return made(Return{atStatementEnd() ? nullptr : expressions_.expression()});
    if (tokens_.acceptWord("Raise"))
        return made(Raise{expressions_.expression()});
    if (tokens_.acceptWord("Print"))
        return made(Print{atStatementEnd() ? Expressions{} : expressions_.list()});
    if (tokens_.acceptWord("Assert")) {
        Assert result{expressions_.expression(), nullptr};
        if (tokens_.acceptSymbol(","))
            result.text = expressions_.expression();
        return made(std::move(result));
    }
    return callOrAssignment();
}

Statement StatementParser::callOrAssignment() {
    const Position at = tokens_.next().at;
    const bool isTyped = form_ == Form::typed;
    if (tokens_.next().kind != TokenKind::name || isReserved(tokens_.next())) {
        if (isTyped || tokens_.next().isName("New") || tokens_.next().isSymbol("("))
            return {at, Evaluate{expressions_.expression()}};
        tokens_.failExpecting("a statement");
    }
    ExpressionPtr first = expressions_.chain();
    if (tokens_.acceptSymbol("="))
        return {at, Assign{std::move(first), expressions_.expression()}};
    if (expressions_.atOperator(isTyped || !tokens_.isJoinedToTheNext()))
        return {at, Evaluate{expressions_.continued(std::move(first))}};
    if (!atStatementEnd()) {
        // Arguments without brackets.
        Arguments *arguments = nullptr;
        if (auto *name = std::get_if<Name>(&first->what))
            arguments = &name->arguments;
        else if (auto *member = std::get_if<Member>(&first->what))
            arguments = &member->arguments;
        if (arguments == nullptr || arguments->written)
            expectStatementEnd();
        else
            *arguments = {.written = true, .values = expressions_.list()};
    }
    return {at, Evaluate{std::move(first)}};
}

TypeName StatementParser::typeName() {
    TypeName result;
    Identifier name = tokens_.expectName("a type");
    result.type = typeNamed(name.name);
    result.at = name.at;
    if (tokens_.acceptSymbol("(")) {
        tokens_.expectSymbol(")");
        result.type.isArray = true;
    }
    return result;
}

Variable StatementParser::variable() {
    Variable result{.name = tokens_.expectName("a variable's name")};
    if (!tokens_.acceptSymbol("("))
        return result;
    result.isArray = true;
    if (tokens_.acceptSymbol(")"))
        return result;
    result.upperBound = expressions_.expression();
    tokens_.expectSymbol(")");
    return result;
}

/// "a, b() As Integer" or "c As New Date(2026, 1, 1)": names that share a type; more may follow.
/// What can be read is declared even when the rest cannot: else every use would be another error.
Declare StatementParser::declare() {
    Declare result;
    try {
        do
            result.variables.push_back(variable());
        while (tokens_.acceptSymbol(","));
        tokens_.expectWord("As");
        const Position at = tokens_.next().at;
        if (tokens_.acceptWord("New")) {
            const Token &word = tokens_.next();
            result.type = {typeNamed(word.written), word.at};
            result.value = expressions_.creation(at);
        } else {
            result.type = typeName();
            if (tokens_.acceptSymbol("="))
                result.value = expressions_.expression();
        }
    } catch (const SyntaxError &error) {
        report(error.diagnostic);
        tokens_.skipLine();
    }
    return result;
}

DeclareConstant StatementParser::declareConstant() {
    DeclareConstant result{.name = tokens_.expectName("a constant's name"), .value = {}};
    if (tokens_.acceptWord("As"))
        typeName(); // the value has a type of its own
    tokens_.expectSymbol("=");
    result.value = expressions_.expression();
    return result;
}

ReDim StatementParser::reDim() {
    ReDim result{.variable = variable()};
    if (result.variable.upperBound == nullptr)
        tokens_.failExpecting("an upper bound in brackets");
    return result;
}

Exit StatementParser::exitStatement() {
    if (tokens_.acceptWord("For"))
        return {Leaving::forLoop};
    if (tokens_.acceptWord("While"))
        return {Leaving::whileLoop};
    if (tokens_.acceptWord("Sub"))
        return {Leaving::procedure, false};
    if (tokens_.acceptWord("Function"))
        return {Leaving::procedure, true};
    tokens_.failExpecting("For, While, Sub or Function");
}

} // namespace host::program
