// Replaces operator new and delete, and watches SysFreeString. Who frees a block is read off the stack: the
// simulator and the COM objects in front of it never call the library, so a function of theirs on it means
// that the simulator frees.
#include "FreedBlocks.h"

#include <quillet-platform/TestHooks.h>

#include <cxxabi.h>
#include <elf.h>
#include <execinfo.h>
#include <link.h>
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace quillet::tests {

/// Takes the block over while a test watches; false when it is to be freed.
bool KeepFreedBlock(void* block) noexcept;

namespace {

constexpr std::size_t kMostFrames = 128;

/// A function of this program.
struct Function {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    std::string name; ///< mangled
    bool ofSimulator = false;
};

/// Where the program was loaded.
std::uintptr_t LoadAddress() {
    std::uintptr_t address = 0;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* found) {
            *static_cast<std::uintptr_t*>(found) = info->dlpi_addr;
            return 1; // the program itself comes first
        },
        &address);
    return address;
}

/// The functions of this program by address, from its own symbol table: hidden ones, which the dynamic linker
/// does not know, included.
std::vector<Function> ReadFunctions() {
    std::ifstream file("/proc/self/exe", std::ios::binary);
    const std::string image(std::istreambuf_iterator<char>(file), {});
    const auto at = [&image](std::size_t offset, auto& value) {
        if (offset > image.size() || sizeof value > image.size() - offset) {
            throw std::runtime_error("the program's symbol table can not be read");
        }
        std::memcpy(&value, image.data() + offset, sizeof value);
    };
    ElfW(Ehdr) header{};
    at(0, header);
    const auto section = [&](std::size_t index) {
        ElfW(Shdr) found{};
        at(header.e_shoff + index * header.e_shentsize, found);
        return found;
    };
    const std::uintptr_t base = LoadAddress();
    std::vector<Function> functions;
    for (std::size_t index = 0; index < header.e_shnum; ++index) {
        const auto table = section(index);
        if (table.sh_type != SHT_SYMTAB) {
            continue;
        }
        const auto names = section(table.sh_link);
        for (std::size_t offset = 0; offset < table.sh_size; offset += table.sh_entsize) {
            ElfW(Sym) symbol{};
            at(table.sh_offset + offset, symbol);
            if ((symbol.st_info & 0xF) != STT_FUNC || symbol.st_size == 0) {
                continue;
            }
            Function function;
            function.begin = base + symbol.st_value;
            function.end = function.begin + symbol.st_size;
            function.name = image.c_str() + names.sh_offset + symbol.st_name;
            function.ofSimulator = function.name.find("7quillet9simulator") != std::string::npos ||
                                   function.name.find("7quillet3wmi") != std::string::npos;
            functions.push_back(std::move(function));
        }
    }
    std::sort(functions.begin(), functions.end(),
              [](const Function& left, const Function& right) { return left.begin < right.begin; });
    if (std::none_of(functions.begin(), functions.end(),
                     [](const Function& function) { return function.ofSimulator; })) {
        throw std::runtime_error("the program has no symbols, or no simulator: nothing could be told apart");
    }
    return functions;
}

const std::vector<Function>& Functions() {
    static const std::vector<Function> kFunctions = ReadFunctions();
    return kFunctions;
}

/// The function at a return address; null outside the program.
const Function* FunctionAt(const void* returnAddress) {
    const auto address = reinterpret_cast<std::uintptr_t>(returnAddress) - 1;
    const auto& functions = Functions();
    auto after =
        std::upper_bound(functions.begin(), functions.end(), address,
                         [](std::uintptr_t sought, const Function& each) { return sought < each.begin; });
    if (after == functions.begin() || address >= (--after)->end) {
        return nullptr;
    }
    return &*after;
}

std::string Readable(const std::string& mangled) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : mangled;
}

[[gnu::noinline]] std::size_t Frames(void** frames) {
    return static_cast<std::size_t>(backtrace(frames, static_cast<int>(kMostFrames)));
}

bool Holds(const void* block, std::size_t bytes, const std::string& pattern) {
    return memmem(block, bytes, pattern.data(), pattern.size()) != nullptr;
}

/// What one watcher has. Its own memory comes from malloc, so that it does not watch itself.
struct Watch {
    struct Kept {
        void* block;
        std::size_t bytes;
        Kept* next;
    };
    std::string narrow;
    std::string wide; ///< the bytes of the wide characters
    std::size_t outerFrames = 0;
    std::size_t count = 0;
    Kept* kept = nullptr;
    std::vector<FreedBlocks::Finding> findings;
    bool busy = false;

    /// Takes the block over.
    void Keep(void* block, std::size_t bytes, bool isBstr) {
        busy = true;
        ++count;
        if (auto* entry = static_cast<Kept*>(std::malloc(sizeof(Kept)))) {
            *entry = {block, bytes, kept};
            kept = entry;
        }
        if (Holds(block, bytes, narrow) || Holds(block, bytes, wide)) {
            findings.push_back(Describe(bytes, isBstr));
        }
        busy = false;
    }

    FreedBlocks::Finding Describe(std::size_t bytes, bool isBstr) const {
        FreedBlocks::Finding finding{bytes, isBstr, false, {}};
        void* frames[kMostFrames];
        const std::size_t depth = Frames(frames);
        for (std::size_t index = 0; index + outerFrames < depth; ++index) {
            if (const Function* function = FunctionAt(frames[index])) {
                finding.bySimulator = finding.bySimulator || function->ofSimulator;
                finding.where += "\n    " + Readable(function->name);
            }
        }
        return finding;
    }

    void Release() {
        while (kept != nullptr) {
            Kept* const entry = std::exchange(kept, kept->next);
            std::free(entry->block);
            std::free(entry);
        }
    }
};

thread_local Watch* g_watch = nullptr;

bool IsWatching() noexcept {
    return g_watch != nullptr && !g_watch->busy;
}

void SeeFreedBstr(const void* text, std::size_t bytes) {
    if (IsWatching() && bytes != 0) {
        if (void* copy = std::malloc(bytes)) {
            std::memcpy(copy, text, bytes);
            g_watch->Keep(copy, bytes, true);
        }
    }
}

} // namespace

FreedBlocks::FreedBlocks(std::string_view sought) {
    if (g_watch != nullptr) {
        throw std::logic_error("one watcher at a time");
    }
    Functions();
    auto made = std::make_unique<Watch>();
    made->narrow = sought;
    for (const char character : sought) {
        const auto wide = static_cast<wchar_t>(character);
        made->wide.append(reinterpret_cast<const char*>(&wide), sizeof wide);
    }
    void* frames[kMostFrames];
    // This function and the one that counts are not the watcher's callers.
    made->outerFrames = Frames(frames) - 2;
    g_watch = made.release();
    platform::ObserveFreedBstrs(SeeFreedBstr);
}

FreedBlocks::~FreedBlocks() {
    platform::ObserveFreedBstrs(nullptr);
    const std::unique_ptr<Watch> ended(std::exchange(g_watch, nullptr));
    ended->Release();
}

std::size_t FreedBlocks::Count() const noexcept {
    return g_watch->count;
}

std::vector<FreedBlocks::Finding> FreedBlocks::Findings() const {
    g_watch->busy = true;
    std::vector<Finding> findings = g_watch->findings;
    g_watch->busy = false;
    return findings;
}

std::vector<FreedBlocks::Finding> FreedBlocks::FindingsOutsideSimulator() const {
    std::vector<Finding> findings = Findings();
    std::erase_if(findings, [](const Finding& finding) { return finding.bySimulator; });
    return findings;
}

bool KeepFreedBlock(void* block) noexcept {
    if (!IsWatching()) {
        return false;
    }
    g_watch->Keep(block, malloc_usable_size(block), false);
    return true;
}

} // namespace quillet::tests

void* operator new(std::size_t size) {
    if (void* block = std::calloc(1, size != 0 ? size : 1)) {
        return block;
    }
    throw std::bad_alloc();
}

// The other forms, which the standard library builds on these two, and the sanitizers' libraries do not.

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::calloc(1, size != 0 ? size : 1);
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}

void operator delete(void* block) noexcept {
    if (block != nullptr && !quillet::tests::KeepFreedBlock(block)) {
        std::free(block);
    }
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept {
    operator delete(block);
}

void operator delete[](void* block) noexcept {
    operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    operator delete(block);
}

void operator delete[](void* block, const std::nothrow_t&) noexcept {
    operator delete(block);
}
