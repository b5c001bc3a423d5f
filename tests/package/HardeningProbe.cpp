// A program with something of everything that a hardened compiler treats differently: as much of the stack as
// somebody asks for, and a copy of any length into an array.
#include <cstring>

int main(int count, char** arguments) {
    const std::size_t length = std::strlen(arguments[0]) * static_cast<unsigned>(count);
    char* const asked = static_cast<char*>(__builtin_alloca(length + 1));
    std::memset(asked, count, length + 1);
    char copied[4096];
    std::memcpy(copied, asked, length);
    return copied[length / 2] == 0 ? 1 : 0;
}
