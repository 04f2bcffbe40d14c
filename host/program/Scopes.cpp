#include "host/program/Scopes.h"

#include "host/language/Names.h"

#include <ranges>

namespace host::program {

void Scopes::openProcedure() {
    local_.emplace();
    openBlock();
}

std::size_t Scopes::closeProcedure() {
    const std::size_t count = current().slotCount;
    local_.reset();
    return count;
}

void Scopes::openBlock() {
    current().blocks.push_back({.firstSlot = current().slotCount});
}

void Scopes::closeBlock(Block &block) {
    block.firstSlot = current().blocks.back().firstSlot;
    block.endSlot = current().slotCount;
    current().blocks.pop_back();
}

const Declared *Scopes::declare(const Identifier &name, const Type &type, bool isConstant) {
    Frame &frame = current();
    const auto [place, added] = frame.blocks.back().names.try_emplace(
        foldedName(name.name),
        Declared{name, type, {!local_.has_value(), frame.slotCount}, isConstant});
    if (!added)
        return nullptr;
    ++frame.slotCount;
    return &place->second;
}

void Scopes::forget(std::string_view name) {
    current().blocks.back().names.erase(foldedName(name));
}

const Declared *Scopes::findInBlock(std::string_view name) const {
    const auto &names = (local_ ? *local_ : globals_).blocks.back().names;
    const auto found = names.find(foldedName(name));
    return found == names.end() ? nullptr : &found->second;
}

const Declared *Scopes::find(std::string_view name) const {
    const std::string folded = foldedName(name);
    const auto in = [&](const OpenBlock &block) -> const Declared * {
        const auto found = block.names.find(folded);
        return found == block.names.end() ? nullptr : &found->second;
    };
    for (const OpenBlock &block : std::views::reverse((local_ ? *local_ : globals_).blocks))
        if (const Declared *found = in(block))
            return found;
    return local_ ? in(globals_.blocks.front()) : nullptr;
}

std::vector<std::string> Scopes::names() const {
    std::vector<std::string> result;
    const auto add = [&](const Frame &frame) {
        for (const OpenBlock &block : frame.blocks)
            for (const auto &[folded, declared] : block.names)
                result.push_back(declared.name.name);
    };
    add(globals_);
    if (local_)
        add(*local_);
    return result;
}

} // namespace host::program
