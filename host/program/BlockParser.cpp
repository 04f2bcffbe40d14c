// Statements with blocks, and where blocks end.

#include "host/language/Names.h"
#include "host/program/StatementParser.h"

#include <array>
#include <memory>
#include <span>
#include <string>

namespace host::program {

namespace {

constexpr std::array<std::string_view, 6> endsOfOneWord{"Next", "Wend",  "ElseIf",
                                                        "Else", "Catch", "Finally"};
constexpr std::array<std::string_view, 4> endsOfTwoWords{"End If", "End Try", "End Sub",
                                                         "End Function"};

} // namespace

std::string_view StatementParser::endHere() const {
    for (const std::string_view end : endsOfOneWord)
        if (tokens_.next().isName(end))
            return end;
    for (const std::string_view end : endsOfTwoWords)
        if (tokens_.next().isName("End") && tokens_.afterNext().isName(end.substr(4)))
            return end;
    return {};
}

void StatementParser::takeEnd(std::string_view end) {
    tokens_.take();
    if (end.find(' ') != std::string_view::npos)
        tokens_.take();
}

/// Up to the end of the innermost block, or of one around it: then the innermost is not closed.
void StatementParser::statements(Block &block) {
    for (tokens_.skipLineEnds(); !tokens_.atEnd(); tokens_.skipLineEnds()) {
        const std::string_view end = endHere();
        // No procedure stands inside of a block: before one, the block is not closed.
        if ((!opened_.empty() && startsProcedure()) ||
            std::ranges::any_of(opened_, [&](const Opened &o) { return o.hasEnd(end); }))
            return;
        if (end.empty()) {
            reporting([&] { statement(block); });
        } else {
            report({tokens_.next().at, std::string(end) + " closes nothing here"});
            tokens_.skipLine();
        }
    }
}

Block StatementParser::body(const Opened &opened) {
    const Nesting nesting(nesting_, opened.at);
    opened_.push_back(opened);
    Block block;
    statements(block);
    opened_.pop_back();
    return block;
}

/// Takes what closes the block; false, after an error, when something else stands there.
bool StatementParser::close(const Opened &opened) {
    const std::string_view end = endHere();
    isClosed_ = end == opened.ends.back();
    if (isClosed_) {
        takeEnd(end);
        return true;
    }
    openAtEnd_ += tokens_.atEnd() ? 1 : 0;
    report({opened.at,
            std::string(opened.word) + " is not closed with " + std::string(opened.ends.back())});
    return false;
}

Statement StatementParser::blockStatement(const Token &word) {
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

If StatementParser::ifStatement(Position at) {
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

Block StatementParser::oneLineBlock() {
    Block block;
    statement(block);
    return block;
}

/// Something follows "Then"; a line without "Then" is a mistake in one that has a block.
bool StatementParser::isOneLineIf() const {
    const std::span<const Token> line = tokens_.restOfLine();
    const auto then = std::ranges::find_if(line, [](const Token &t) { return t.isName("Then"); });
    return onOneLine_ || (then != line.end() && then + 1 != line.end());
}

void StatementParser::oneLineIf(If &result) {
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

Statement StatementParser::forStatement(Position at) {
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

void StatementParser::count(For &loop) {
    tokens_.expectSymbol("=");
    loop.from = expressions_.expression();
    loop.isDown = tokens_.acceptWord("DownTo");
    if (!loop.isDown)
        tokens_.expectWord("To");
    loop.to = expressions_.expression();
    if (tokens_.acceptWord("Step"))
        loop.step = expressions_.expression();
}

While StatementParser::whileStatement(Position at) {
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

Try StatementParser::tryStatement(Position at) {
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

Catch StatementParser::catchClause() {
    Catch result{.name = {}, .className = {"RuntimeException", tokens_.next().at}, .body = {}};
    if (atStatementEnd())
        return result;
    result.name = tokens_.expectName("a variable's name");
    if (tokens_.acceptWord("As"))
        result.className = tokens_.expectName("a class");
    return result;
}

// Procedures

ProgramParameter StatementParser::parameter() {
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

void StatementParser::procedure(bool isFunction) {
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

} // namespace host::program
