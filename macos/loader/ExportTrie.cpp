#include "macos/loader/ExportTrie.h"

#include "llvm/BinaryFormat/MachO.h"
#include "llvm/Support/DataExtractor.h"

#include <algorithm>
#include <string>

namespace macho {
namespace {

namespace format = llvm::MachO;
using Cursor = llvm::DataExtractor::Cursor;

class TrieReader {
public:
    TrieReader(Bytes table, std::uint64_t imageSize, const Reporter &reporter)
        : data_(llvm::ArrayRef(table.data(), table.size()), true, 8), visited_(table.size()),
          lettersLeft_(lettersPerByte * table.size()), imageSize_(imageSize), reporter_(reporter) {
        if (!table.empty())
            visit({0, {}});
    }

    std::vector<NamedOffset> read() {
        while (!pending_.empty()) {
            node_ = std::move(pending_.back());
            pending_.pop_back();
            readNode();
        }
        std::ranges::sort(exports_);
        return std::move(exports_);
    }

private:
    struct Node {
        std::uint64_t offset = 0;
        std::string name; // spelt by the edges to it
    };

    /// A small table can spell a lot, by hanging many short edges on a few long ones. No honest
    /// table comes near this.
    static constexpr std::uint64_t lettersPerByte = 200;

    /// Every node of a tree is reached once.
    void visit(Node node) {
        if (node.offset >= visited_.size())
            fail("a node at " + hex(node.offset) + ", beyond the table");
        if (visited_[node.offset])
            fail("the node at " + hex(node.offset) + " is reached twice");
        if (node.name.size() > lettersLeft_)
            fail("more letters than it has room for");
        lettersLeft_ -= node.name.size();
        visited_[node.offset] = true;
        pending_.push_back(std::move(node));
    }

    void readNode() {
        Cursor cursor(node_.offset);
        const auto size = data_.getULEB128(cursor);
        const auto start = cursor.tell();
        check(cursor);
        if (!rangeFits(start, size, visited_.size()))
            fail("the node at " + hex(node_.offset) + " ends beyond the table");
        if (size != 0)
            readExport(cursor);
        cursor.seek(start + size);
        const auto children = data_.getU8(cursor);
        check(cursor);
        for (unsigned i = 0; i < children; ++i) {
            const auto edge = data_.getCStrRef(cursor);
            const auto offset = data_.getULEB128(cursor);
            check(cursor);
            visit({offset, node_.name + edge.str()});
        }
    }

    void readExport(Cursor &cursor) {
        const std::string name(publicName(node_.name));
        const auto flags = data_.getULEB128(cursor);
        check(cursor);
        if ((flags & format::EXPORT_SYMBOL_FLAGS_KIND_MASK) !=
                format::EXPORT_SYMBOL_FLAGS_KIND_REGULAR ||
            flags & (format::EXPORT_SYMBOL_FLAGS_REEXPORT |
                     format::EXPORT_SYMBOL_FLAGS_STUB_AND_RESOLVER))
            fail(name + ": only exports that are a place in the image are supported");
        const auto offset = data_.getULEB128(cursor);
        check(cursor);
        if (offset >= imageSize_)
            fail(name + " is at " + hex(offset) + ", outside the image");
        exports_.push_back({name, offset});
    }

    void check(Cursor &cursor) {
        if (auto error = cursor.takeError())
            fail("node at " + hex(node_.offset) + ": " + llvm::toString(std::move(error)));
    }

    [[noreturn]] void fail(const std::string &what) const { reporter_.fail("export table", what); }

    llvm::DataExtractor data_;
    std::vector<bool> visited_; // by offset
    std::uint64_t lettersLeft_;
    std::uint64_t imageSize_;
    const Reporter &reporter_;
    std::vector<Node> pending_;
    Node node_; // that is being read
    std::vector<NamedOffset> exports_;
};

} // namespace

std::vector<NamedOffset> readExportTrie(Bytes table, std::uint64_t imageSize,
                                        const Reporter &reporter) {
    return TrieReader(table, imageSize, reporter).read();
}

} // namespace macho
