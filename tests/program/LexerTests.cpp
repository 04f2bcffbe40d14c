#include "host/language/Lexer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAre;

namespace {

/// "kind:what was written" of each token but the end.
std::vector<std::string> shown(std::string_view text) {
    constexpr const char *kinds[] = {"name",    "integer", "real",  "text", "symbol",
                                     "lineEnd", "comment", "wrong", "end"};
    std::vector<std::string> result;
    for (const Token &token : tokensOf(text))
        if (token.kind == TokenKind::lineEnd)
            result.emplace_back("lineEnd");
        else if (token.kind != TokenKind::end)
            result.push_back(kinds[static_cast<std::size_t>(token.kind)] +
                             (":" + std::string(token.written)));
    return result;
}

std::vector<std::string> places(std::string_view text) {
    std::vector<std::string> result;
    for (const Token &token : tokensOf(text))
        result.push_back(std::to_string(token.at.line) + ':' + std::to_string(token.at.column));
    return result;
}

} // namespace

TEST(Lexer, TellsKindsApart) {
    EXPECT_THAT(shown("a.b2(\"x\", 1.5)<>_c"),
                ElementsAre("name:a", "symbol:.", "name:b2", "symbol:(", "text:\"x\"", "symbol:,",
                            "real:1.5", "symbol:)", "symbol:<>", "name:_c"));
}

TEST(Lexer, ReadsNumbers) {
    EXPECT_THAT(shown("42 1.5e3 1e-2 &hFF &B101 &o17 18446744073709551615"),
                ElementsAre("integer:42", "real:1.5e3", "real:1e-2", "integer:&hFF",
                            "integer:&B101", "integer:&o17", "integer:18446744073709551615"));
    EXPECT_EQ(tokensOf("&hFFFFFFFFFFFFFFFF").front().integer, UINT64_MAX);
    EXPECT_EQ(tokensOf("1.5e3").front().real, 1500);
}

TEST(Lexer, KeepsWhatIsNoTokenAsWrong) {
    for (const char *text : {"12ab", "&hXY", "&h", "&q1", "\"open", "18446744073709551616", "1e999",
                             "?", "&h10000000000000000"})
        EXPECT_EQ(tokensOf(text).front().kind, TokenKind::wrong) << text;
}

TEST(Lexer, ReadsDoubledQuotesAsOne) {
    EXPECT_EQ(tokensOf(R"("a ""quoted"" word")").front().value, "a \"quoted\" word");
}

TEST(Lexer, KnowsThreeCommentsToTheEndOfTheLine) {
    EXPECT_THAT(shown("a ' one\nb // two\nc Rem three\nremark"),
                ElementsAre("name:a", "comment:' one", "lineEnd", "name:b", "comment:// two",
                            "lineEnd", "name:c", "comment:Rem three", "lineEnd", "name:remark"));
}

TEST(Lexer, JoinsLinesAtAnUnderscore) {
    EXPECT_THAT(shown("a _\n  b _ ' why\r\nc"), ElementsAre("name:a", "name:b", "name:c"));
    EXPECT_THAT(places("a _\n  b _ ' why\r\nc"), ElementsAre("1:1", "2:3", "3:1", "3:2"));
}

TEST(Lexer, EndsStatementsAtLineEndsOfEverySystemAndSemicolons) {
    EXPECT_THAT(shown("a\nb\r\nc\rd;e"),
                ElementsAre("name:a", "lineEnd", "name:b", "lineEnd", "name:c", "lineEnd", "name:d",
                            "lineEnd", "name:e"));
}

TEST(Lexer, CountsColumnsInCharacters) {
    EXPECT_THAT(places("\"Gr\xC3\xBC\xC3\x9F"
                       "e\" x"),
                ElementsAre("1:1", "1:9", "1:10"));
}

TEST(Lexer, PassesOverAByteOrderMark) {
    EXPECT_THAT(shown("\xEF\xBB\xBFPrint"), ElementsAre("name:Print"));
    EXPECT_THAT(places("\xEF\xBB\xBFPrint"), ElementsAre("1:1", "1:6"));
}
