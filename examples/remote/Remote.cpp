// Lists the adapters of a Windows machine from Linux: example_remote HOST. The Kerberos ticket of the caller
// (kinit) says who asks.
#include "../Text.h"

#include <quillet-wsman/Remote.h>
#include <quillet/client.h>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: example_remote HOST\n");
        return 2;
    }
    const std::string host = argv[1];
    try {
        const quillet::ComUsage com;
        const quillet::wsman::Remote remote({.host = host}); // before any session
        quillet::Session session({.machine = std::wstring(host.begin(), host.end())});
        for (const quillet::Adapter& adapter : session.Adapters()) {
            std::printf("%s\n", Utf8(adapter.name).c_str());
        }
    } catch (const quillet::Error& error) {
        std::fprintf(stderr, "%s\n%s\n", error.what(), quillet::wsman::LastFailure().c_str());
        return 1;
    }
    return 0;
}
