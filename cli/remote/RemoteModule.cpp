// Loading the module.
#include "remote/RemoteModule.h"

#include "ending/Failure.h"

#include <dlfcn.h>

#include <cstring>
#include <filesystem>

namespace quilletctl {

namespace {

[[noreturn]] void Refuse(const std::string& why) {
    throw Refusal("load what reaches machines over the network", HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND),
                  why);
}

std::string TextOfError() {
    const char* text = dlerror();
    return text != nullptr ? text : "the system does not say why";
}

const RemoteModule& Load() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        Refuse("where this program lies is not known: " + error.message());
    }
    // Never from a folder that the environment names.
    const std::filesystem::path file = (program.parent_path() / QUILLETCTL_REMOTE_MODULE).lexically_normal();
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        Refuse(TextOfError());
    }
    void* const symbol = dlsym(library, "QuilletctlRemoteModule");
    if (symbol == nullptr) {
        Refuse(TextOfError());
    }
    const RemoteModule* const module = reinterpret_cast<decltype(&QuilletctlRemoteModule)>(symbol)();
    if (std::strcmp(module->version, QUILLETCTL_VERSION) != 0) {
        Refuse(file.string() + " is of version " + module->version + ", this program of " +
               QUILLETCTL_VERSION);
    }
    return *module;
}

} // namespace

const RemoteModule& LoadRemoteModule() {
    static const RemoteModule& kModule = Load();
    return kModule;
}

} // namespace quilletctl
