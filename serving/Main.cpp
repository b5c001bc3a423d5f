// quillet-simulator: serves simulated machines to whatever speaks WS-Management.
#include "Options.h"
#include "ServedMachine.h"
#include "Users.h"

#include <files/Files.h>
#include <server/HttpServer.h>

#include <csignal>
#include <ctime>
#include <iostream>
#include <list>
#include <set>

namespace quillet::serving {

namespace {

/// Signals that ask the program to end. All threads leave them to the one that waits.
class EndingSignals {
  public:
    EndingSignals() {
        std::signal(SIGPIPE, SIG_IGN); // standard output may be a pipe, too
        sigemptyset(&m_signals);
        for (const int each : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&m_signals, each);
        }
        pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
    }
    /// Whether one comes within a second. The next one ends the program at once.
    bool Wait() {
        const timespec second{1, 0};
        if (sigtimedwait(&m_signals, nullptr, &second) < 0) {
            return false;
        }
        pthread_sigmask(SIG_UNBLOCK, &m_signals, nullptr);
        return true;
    }

  private:
    sigset_t m_signals{};
};

/// Where in the server a machine is, with several: what of its file's name tells it apart.
std::string StemOf(const std::string& file) {
    constexpr const char* kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
    std::string stem = quilletctl::FilePath(file).stem().string();
    if (stem.empty() || stem.find_first_not_of(kPlain) != std::string::npos) {
        throw Mistake(file +
                      ": with several machines the name of each is part of its URL: letters, digits, . _ -");
    }
    return stem;
}

std::string UrlOf(const Options& options, int port, const std::string& path) {
    const bool isSix = options.address.find(':') != std::string::npos;
    return (options.tls ? "https://" : "http://") + (isSix ? '[' + options.address + ']' : options.address) +
           ':' + std::to_string(port) + path;
}

wsman::HttpOptions HttpOptionsOf(const Options& options) {
    wsman::HttpOptions http;
    http.address = options.address;
    http.port = options.port;
    http.users = ReadUsers(options);
    if (options.tls) {
        http.tls = wsman::TlsFiles{options.tls->certificate, options.tls->key};
    }
    if (!options.isQuiet) {
        http.log = [](const wsman::LogLine& line) { std::cerr << line.Text() + '\n'; };
    }
    return http;
}

void Serve(const Options& options) {
    EndingSignals ending;
    CallLog calls(options.journalFile);
    std::list<ServedMachine> machines;
    std::set<std::string> paths;
    std::string lines;
    wsman::HttpServer server(HttpOptionsOf(options));
    std::vector<std::pair<std::string, std::string>> served;
    for (const std::string& file : options.machines) {
        const std::string stem = options.machines.size() > 1 ? StemOf(file) : std::string();
        const std::string path = (stem.empty() ? "" : '/' + stem) + "/wsman";
        if (!paths.insert(path).second) {
            throw Mistake(file + ": there are two machines of this name");
        }
        ServedMachine& machine =
            machines.emplace_back(file, options.stateFile, calls, stem.empty() ? stem : stem + ": ");
        server.Serve(path, [&machine](std::string request, const std::string& user) {
            return machine.Answer(std::move(request), user);
        });
        served.emplace_back(machine.Name(), path);
    }
    const int port = server.Start();
    for (const auto& [name, path] : served) {
        std::cout << "serving " << name << " at " << UrlOf(options, port, path) << std::endl;
    }
    const auto save = [&machines] {
        for (ServedMachine& each : machines) {
            each.Save();
        }
    };
    while (!ending.Wait()) {
        try {
            save();
        } catch (const Mistake& failure) { // which may be over in the end
            std::cerr << "quillet-simulator: " << failure.what() << std::endl;
        }
    }
    server.Stop();
    save();
}

} // namespace

} // namespace quillet::serving

int main(int argumentCount, char** arguments) {
    using namespace quillet::serving;
    try {
        if (const auto options = ReadOptions(argumentCount, arguments)) {
            Serve(*options);
        }
        return 0;
    } catch (const Mistake& mistake) {
        std::cerr << "quillet-simulator: " << mistake.what() << '\n';
        return 2;
    } catch (const std::exception& failure) {
        std::cerr << "quillet-simulator: " << failure.what() << '\n';
        return 1;
    }
}
