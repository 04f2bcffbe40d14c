#pragma once

// Which variable a name means, and where it lives.

#include "host/program/Syntax.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::program {

struct Declared {
    Identifier name;
    Type type;
    Slot slot;
    bool isConstant = false;
};

/// Blocks inside blocks, of the program itself and of the procedure that is being checked.
/// Procedures see the program's outermost variables.
class Scopes {
public:
    Scopes() { openBlock(); }

    void openProcedure();
    /// How many slots it takes.
    std::size_t closeProcedure();

    void openBlock();
    /// Notes in the block which slots are its own.
    void closeBlock(Block &block);

    /// Null when the block has a variable of that name already.
    const Declared *declare(const Identifier &name, const Type &type, bool isConstant = false);
    /// The innermost block forgets the name, if it knows it.
    void forget(std::string_view name);
    [[nodiscard]] const Declared *find(std::string_view name) const;
    [[nodiscard]] const Declared *findInBlock(std::string_view name) const;
    [[nodiscard]] std::vector<std::string> names() const;
    [[nodiscard]] std::size_t globalCount() const { return globals_.slotCount; }

private:
    struct OpenBlock {
        std::size_t firstSlot = 0;
        std::map<std::string, Declared, std::less<>> names = {}; ///< folded
    };
    struct Frame {
        std::vector<OpenBlock> blocks = {};
        std::size_t slotCount = 0;
    };
    [[nodiscard]] Frame &current() { return local_ ? *local_ : globals_; }

    Frame globals_;
    std::optional<Frame> local_;
};

} // namespace host::program
