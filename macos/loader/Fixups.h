#pragma once

#include "macos/loader/ImagePlan.h"
#include "macos/loader/LoadCommands.h"
#include "macos/loader/Messages.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>

namespace macho {

/// Collects, for a plan, the pointers that have to be patched. Checks each of them; throws
/// LoadError.
class Fixups {
public:
    Fixups(const LoadCommands &commands, const Reporter &reporter, ImagePlan &plan);

    /// Names the table that is being read, for messages, and starts counting its entries.
    void beginTable(const char *name);
    [[noreturn]] void fail(const std::string &what) const;

    /// The pointer at `offset` of a segment, counted in the file's order, is moved with the image.
    void rebase(std::uint64_t segment, std::uint64_t offset);
    /// The same for a pointer whose value does not stand in its place: where it points to as
    /// linked.
    void rebase(std::uint64_t segment, std::uint64_t offset, std::uint64_t target);
    /// The pointer is that to a symbol. `symbol` has its leading underscore; `ordinal` numbers the
    /// libraries from 1, or is one of the special ones.
    void bind(std::uint64_t segment, std::uint64_t offset, std::string_view symbol,
              std::int64_t ordinal, Missing missing, std::int64_t addend);

private:
    std::uint64_t slotAt(std::uint64_t segment, std::uint64_t offset);
    [[nodiscard]] Import import(std::string_view symbol, std::int64_t ordinal,
                                Missing missing) const;

    const LoadCommands &commands_;
    const Reporter &reporter_;
    ImagePlan &plan_;
    const char *table_ = "";
    std::uint64_t slotsLeft_ = 0;
    // Places in the plan's imports.
    std::map<std::tuple<std::string, std::int64_t, Missing>, std::size_t, std::less<>> imports_;
};

/// Reads all of the image's tables of fixups into `plan`: rebases, imports and binds. `file` is
/// followed by a zero byte that is not part of it.
void readFixups(Bytes file, const LoadCommands &commands, const Reporter &reporter,
                ImagePlan &plan);

} // namespace macho
