// Reading the command line.
#include "Options.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <iostream>

#include <arpa/inet.h>

namespace quillet::serving {

namespace {

constexpr int kPort = 5985; // which clients take where they are not told
constexpr int kTlsPort = 5986;

/// "ADDRESS", "ADDRESS:PORT", "[ADDRESS]:PORT".
void ReadAddress(const std::string& text, Options& options) {
    const bool isBracketed = text.starts_with('[');
    const std::size_t end = isBracketed ? text.find(']') : text.find(':');
    options.address = text.substr(isBracketed ? 1 : 0, end - (isBracketed ? 1 : 0));
    std::string_view rest =
        end == std::string::npos ? std::string_view() : std::string_view(text).substr(end);
    rest.remove_prefix(isBracketed && !rest.empty() ? 1 : 0);
    if (!rest.empty()) {
        const auto read = std::from_chars(rest.data() + 1, rest.data() + rest.size(), options.port);
        const bool isPort = rest.front() == ':' && read.ec == std::errc() &&
                            read.ptr == rest.data() + rest.size() && options.port >= 0 &&
                            options.port <= 65535;
        options.port = isPort ? options.port : -1;
    }
    if (options.address.empty() || options.port < 0 || (isBracketed && end == std::string::npos)) {
        throw Mistake("--listen " + text + ": this is no ADDRESS:PORT; one of IPv6 is in brackets");
    }
}

/// Whether only this computer can reach an address.
bool IsLoopback(const std::string& address) {
    in_addr four{};
    in6_addr six{};
    if (inet_pton(AF_INET, address.c_str(), &four) == 1) {
        return ntohl(four.s_addr) >> 24 == 127;
    }
    return address == "localhost" ||
           (inet_pton(AF_INET6, address.c_str(), &six) == 1 && IN6_IS_ADDR_LOOPBACK(&six));
}

void Check(const Options& options) {
    const bool hasPassword = !options.passwordFile.empty() || options.passwordDescriptor;
    if (!options.passwordFile.empty() && options.passwordDescriptor) {
        throw Mistake("--password-file and --password-fd: one of them will do");
    }
    if (options.user.empty() == hasPassword) {
        throw Mistake("--user needs --password-file or --password-fd, and these need --user");
    }
    if (!IsLoopback(options.address) && (!options.tls || (!hasPassword && options.usersFile.empty()))) {
        throw Mistake(
            options.address +
            ": others can reach this address; that takes both --tls and a password (--user, --users)");
    }
    if (!options.stateFile.empty() && options.machines.size() > 1) {
        throw Mistake("--state is for one machine");
    }
}

} // namespace

std::optional<Options> ReadOptions(int argumentCount, const char* const* arguments) {
    Options options;
    std::string listen = "127.0.0.1";
    std::pair<std::string, std::string> tls;
    CLI::App app("Serves simulated machines over WS-Management.\n", "quillet-simulator");
    app.get_formatter()->column_width(26);
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("--version", QUILLET_VERSION)->description("Print the version");
    app.add_option("FILE", options.machines, "Machine files; \"builtin\" is the machine that ships")
        ->type_name("");
    app.add_option("--listen", listen, "Default: 127.0.0.1:5985, with TLS 5986; 0: any port")
        ->type_name("ADDRESS:PORT");
    app.add_option("--tls", tls, "Certificate with its chain, and key: files in PEM")->type_name("CERT KEY");
    app.add_option("--user", options.user, "Who may ask; without users everybody may")->type_name("NAME");
    app.add_option("--password-file", options.passwordFile, "The user's password: a line in a file")
        ->type_name("FILE");
    app.add_option("--password-fd", options.passwordDescriptor, "The same from this file descriptor")
        ->type_name("N");
    app.add_option("--users", options.usersFile, "More users: lines NAME:PASSWORD")->type_name("FILE");
    app.add_option("--journal", options.journalFile, "Append each call to the provider to it")
        ->type_name("FILE");
    app.add_option("--state", options.stateFile, "Where the machine lives between runs")->type_name("FILE");
    app.add_flag("--quiet", options.isQuiet, "No line for each request");
    app.footer("One machine is served at /wsman, several each at /STEM/wsman, where STEM\n"
               "is the name of its file without folder and ending.");
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::Success& asked) {
        app.exit(asked, std::cout, std::cerr);
        return std::nullopt;
    } catch (const CLI::ParseError& mistake) {
        throw Mistake(mistake.what());
    }
    if (!tls.first.empty()) {
        options.tls = TlsOption{tls.first, tls.second};
    }
    if (options.machines.empty()) {
        options.machines = {"builtin"};
    }
    options.port = options.tls ? kTlsPort : kPort;
    ReadAddress(listen, options);
    Check(options);
    return options;
}

} // namespace quillet::serving
