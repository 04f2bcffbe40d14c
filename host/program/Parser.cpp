#include "host/program/Parser.h"

#include "host/program/StatementParser.h"

namespace host::program {

Parsed parse(std::string_view text, Form form) {
    return StatementParser(text, form).all();
}

} // namespace host::program
