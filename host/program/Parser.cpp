#include "host/program/Parser.h"

#include "host/language/Names.h"
#include "host/program/ExpressionParser.h"
#include "host/program/TokenReader.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

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

constexpr std::array<std::string_view, 6> endsOfOneWord{"Next", "Wend",  "ElseIf",
                                                        "Else", "Catch", "Finally"};
constexpr std::array<std::string_view, 4> endsOfTwoWords{"End If", "End Try", "End Sub",
                                                         "End Function"};

class Parser {
public:
    Parser(std::string_view text, Form form) : tokens_(text), expressions_(tokens_), form_(form) {}

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
    std::size_t nesting_ = 0;
    bool onOneLine_ = false; ///< inside a one-line If
    bool isClosed_ = true;   ///< the block that was read last
};

template <typename Body>
bool Parser::reporting(Body body) {
    try {
        body();
        return true;
    } catch (const SyntaxError &error) {
        report(error.diagnostic);
        tokens_.skipLine();
        return false;
    }
}

void Parser::expectStatementEnd() {
    if (!atStatementEnd())
        tokens_.failExpecting("the end of the statement");
}

Parsed Parser::all() {
    reporting([&] { statements(parsed_.program.main); });
    return std::move(parsed_);
}

// Blocks

std::string_view Parser::endHere() const {
    for (const std::string_view end : endsOfOneWord)
        if (tokens_.next().isName(end))
            return end;
    for (const std::string_view end : endsOfTwoWords)
        if (tokens_.next().isName("End") && tokens_.afterNext().isName(end.substr(4)))
            return end;
    return {};
}

void Parser::takeEnd(std::string_view end) {
    tokens_.take();
    if (end.find(' ') != std::string_view::npos)
        tokens_.take();
}

/// Up to the end of the innermost block, or of one around it: then the innermost is not closed.
void Parser::statements(Block &block) {
    for (tokens_.skipLineEnds(); !tokens_.atEnd(); tokens_.skipLineEnds()) {
        const std::string_view end = endHere();
        if (!opened_.empty() && startsProcedure()) {
            return; // none stands inside of a block: the block is not closed
        } else if (end.empty()) {
            reporting([&] { statement(block); });
        } else if (std::ranges::any_of(opened_, [&](const Opened &o) { return o.hasEnd(end); })) {
            return;
        } else {
            report({tokens_.next().at, std::string(end) + " closes nothing here"});
            tokens_.skipLine();
        }
    }
}

Block Parser::body(const Opened &opened) {
    const Nesting nesting(nesting_, opened.at);
    opened_.push_back(opened);
    Block block;
    statements(block);
    opened_.pop_back();
    return block;
}

/// Takes what closes the block; false, after an error, when something else stands there.
bool Parser::close(const Opened &opened) {
    const std::string_view end = endHere();
    isClosed_ = end == opened.ends.back();
    if (isClosed_) {
        takeEnd(end);
        return true;
    }
    parsed_.isIncomplete |= tokens_.atEnd();
    report({opened.at,
            std::string(opened.word) + " is not closed with " + std::string(opened.ends.back())});
    return false;
}

// Statements

void Parser::noForeignStatement() {
    const Token &after = tokens_.afterNext();
    if (after.isSymbol("=") || after.isSymbol(".") || after.isSymbol("("))
        return;
    for (const auto &[word, instead] : foreignStatements)
        if (tokens_.next().isName(word))
            throw SyntaxError{{tokens_.next().at, std::string(word) +
                                                      " is no statement of this language; " +
                                                      std::string(instead) + " serves"}};
}

void Parser::statement(Block &block) {
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

Statement Parser::simpleStatement() {
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

Statement Parser::callOrAssignment() {
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

TypeName Parser::typeName() {
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

Variable Parser::variable() {
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
Declare Parser::declare() {
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

DeclareConstant Parser::declareConstant() {
    DeclareConstant result{.name = tokens_.expectName("a constant's name"), .value = {}};
    if (tokens_.acceptWord("As"))
        typeName(); // the value has a type of its own
    tokens_.expectSymbol("=");
    result.value = expressions_.expression();
    return result;
}

ReDim Parser::reDim() {
    ReDim result{.variable = variable()};
    if (result.variable.upperBound == nullptr)
        tokens_.failExpecting("an upper bound in brackets");
    return result;
}

Exit Parser::exitStatement() {
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

// Statements with blocks

Statement Parser::blockStatement(const Token &word) {
    const Nesting nesting(nesting_, word.at);
    tokens_.take();
    if (word.isName("If"))
        return {word.at, ifStatement(word.at)};
    if (onOneLine_)
        throw SyntaxError{{word.at, std::string(word.written) + " has a block and stands on a "
                                                                "line of its own"}};
    if (word.isName("For"))
        return forStatement(word.at);
    if (word.isName("While"))
        return {word.at, whileStatement(word.at)};
    return {word.at, tryStatement(word.at)};
}

If Parser::ifStatement(Position at) {
    If result;
    if (isOneLineIf()) {
        oneLineIf(result);
        return result;
    }
    ExpressionPtr condition;
    const auto readCondition = [&] {
        condition = expressions_.expression();
        tokens_.expectWord("Then");
        expectStatementEnd();
    };
    reporting(readCondition);
    const Opened whole{"If", at, {"ElseIf", "Else", "End If"}};
    const Opened lastPart{"If", at, {"End If"}};
    result.branches.push_back({std::move(condition), body(whole)});
    for (;;) {
        if (!tokens_.next().isName("ElseIf") && !tokens_.next().isName("Else"))
            break;
        const bool isElse = tokens_.take().isName("Else");
        // "Else If" is as good as "ElseIf".
        if (isElse && !tokens_.acceptWord("If")) {
            reporting([&] { expectStatementEnd(); });
            result.otherwise = body(lastPart);
            break;
        }
        condition = nullptr;
        reporting(readCondition);
        result.branches.push_back({std::move(condition), body(whole)});
    }
    close(whole);
    return result;
}

Block Parser::oneLineBlock() {
    Block block;
    statement(block);
    return block;
}

/// Something follows "Then"; a line without "Then" is a mistake in one that has a block.
bool Parser::isOneLineIf() const {
    const std::span<const Token> line = tokens_.restOfLine();
    const auto then = std::ranges::find_if(line, [](const Token &t) { return t.isName("Then"); });
    return onOneLine_ || (then != line.end() && then + 1 != line.end());
}

void Parser::oneLineIf(If &result) {
    const bool before = std::exchange(onOneLine_, true);
    struct Restore {
        bool &flag;
        bool value;
        ~Restore() { flag = value; }
    } const restore{onOneLine_, before};
    do {
        ExpressionPtr condition = expressions_.expression();
        tokens_.expectWord("Then");
        result.branches.push_back({std::move(condition), oneLineBlock()});
    } while (tokens_.acceptWord("ElseIf"));
    if (tokens_.acceptWord("Else"))
        result.otherwise = oneLineBlock();
}

Statement Parser::forStatement(Position at) {
    const bool isEach = tokens_.acceptWord("Each");
    LoopVariable variable;
    For counted;
    ForEach each;
    reporting([&] {
        variable.name = tokens_.expectName("a variable's name");
        if (tokens_.acceptWord("As"))
            variable.declared = typeName();
        if (isEach) {
            tokens_.expectWord("In");
            each.collection = expressions_.expression();
        } else {
            count(counted);
        }
        expectStatementEnd();
    });
    const Opened opened{"For", at, {"Next"}};
    Block block = body(opened);
    if (close(opened) && tokens_.next().kind == TokenKind::name) {
        const Identifier closed = tokens_.expectName("a variable's name");
        if (!sameName(closed.name, variable.name.name))
            report(
                {closed.at, "Next " + closed.name + " closes the loop of " + variable.name.name});
    }
    if (isEach) {
        each.variable = std::move(variable);
        each.body = std::move(block);
        return {at, std::move(each)};
    }
    counted.variable = std::move(variable);
    counted.body = std::move(block);
    return {at, std::move(counted)};
}

void Parser::count(For &loop) {
    tokens_.expectSymbol("=");
    loop.from = expressions_.expression();
    loop.isDown = tokens_.acceptWord("DownTo");
    if (!loop.isDown)
        tokens_.expectWord("To");
    loop.to = expressions_.expression();
    if (tokens_.acceptWord("Step"))
        loop.step = expressions_.expression();
}

While Parser::whileStatement(Position at) {
    While result;
    reporting([&] {
        result.condition = expressions_.expression();
        expectStatementEnd();
    });
    const Opened opened{"While", at, {"Wend"}};
    result.body = body(opened);
    close(opened);
    return result;
}

Try Parser::tryStatement(Position at) {
    Try result;
    const Opened whole{"Try", at, {"Catch", "Finally", "End Try"}};
    const Opened lastPart{"Try", at, {"End Try"}};
    reporting([&] { expectStatementEnd(); });
    result.body = body(whole);
    while (tokens_.acceptWord("Catch")) {
        Catch clause;
        reporting([&] {
            clause = catchClause();
            expectStatementEnd();
        });
        clause.body = body(whole);
        result.catches.push_back(std::move(clause));
    }
    if (tokens_.acceptWord("Finally")) {
        reporting([&] { expectStatementEnd(); });
        result.finally = body(lastPart);
    }
    close(whole);
    return result;
}

Catch Parser::catchClause() {
    Catch result{.name = {}, .className = {"RuntimeException", tokens_.next().at}, .body = {}};
    if (atStatementEnd())
        return result;
    result.name = tokens_.expectName("a variable's name");
    if (tokens_.acceptWord("As"))
        result.className = tokens_.expectName("a class");
    return result;
}

// Procedures

ProgramParameter Parser::parameter() {
    ProgramParameter result;
    result.name = tokens_.expectName("a parameter's name");
    const bool hasBrackets = tokens_.acceptSymbol("(");
    if (hasBrackets)
        tokens_.expectSymbol(")");
    tokens_.expectWord("As");
    result.type = typeName();
    result.type.type.isArray |= hasBrackets;
    if (tokens_.acceptSymbol("="))
        result.defaultValue = expressions_.expression();
    return result;
}

void Parser::procedure(bool isFunction) {
    auto result = std::make_unique<Procedure>();
    const std::string_view word = isFunction ? "Function" : "Sub";
    const Position at = tokens_.next().at;
    reporting([&] {
        result->name = tokens_.expectName("a name");
        if (tokens_.acceptSymbol("(") && !tokens_.acceptSymbol(")")) {
            do
                result->parameters.push_back(parameter());
            while (tokens_.acceptSymbol(","));
            tokens_.expectSymbol(")");
        }
        if (isFunction) {
            tokens_.expectWord("As");
            result->result = typeName();
        }
        expectStatementEnd();
    });
    if (isFunction && !result->result)
        result->result.emplace(); // told above
    const Opened opened{word, at, {isFunction ? "End Function" : "End Sub"}};
    result->body = body(opened);
    close(opened);
    if (!result->name.name.empty())
        parsed_.program.procedures.push_back(std::move(result));
}

} // namespace

Parsed parse(std::string_view text, Form form) {
    return Parser(text, form).all();
}

} // namespace host::program
