// What goes back to the heap while a test watches. Only for hosts with our own platform layer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::tests {

/// Keeps what the calling thread frees while it lives: the blocks of operator delete themselves, and the
/// content that BSTRs had when SysFreeString took them. When it goes, the blocks are freed.
///
/// A program that has this in it replaces operator new and delete. Blocks come zeroed, so that nothing in a
/// block is an earlier owner's.
class FreedBlocks {
  public:
    /// A block that holds the text.
    struct Finding {
        std::size_t bytes = 0;
        bool isBstr = false;
        /// A function of the simulator, or of the COM objects in front of it, stood on the stack above the
        /// watcher.
        bool bySimulator = false;
        std::string where; ///< the functions that freed it, innermost first
    };

    /// @param sought what to look for, as wide or as narrow characters; in ASCII. One watcher at a time.
    explicit FreedBlocks(std::string_view sought);
    ~FreedBlocks();
    FreedBlocks(const FreedBlocks&) = delete;
    FreedBlocks& operator=(const FreedBlocks&) = delete;

    /// How many blocks were freed so far.
    std::size_t Count() const noexcept;
    /// Those of them that hold the text.
    std::vector<Finding> Findings() const;
    /// What the library and its caller freed of them: whatever was not freed by the simulator.
    std::vector<Finding> FindingsOutsideSimulator() const;
};

} // namespace quillet::tests
