// Programs on POSIX hosts.
#include "RunProgram.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

int RunProgram(const std::filesystem::path& program) {
    std::string name = program.string();
    char* arguments[] = {name.data(), nullptr};
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, name.c_str(), nullptr, nullptr, arguments, environ) != 0 ||
        waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}
