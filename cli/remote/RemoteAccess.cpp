// The options of a machine over the network.
#include "remote/RemoteAccess.h"

#include "app/SimulatedMachine.h"
#include "ending/Failure.h"
#include "remote/RemoteMachine.h"
#include "terminal/Console.h"

namespace quilletctl {

void RemoteAccess::Declare(Syntax& syntax) {
    constexpr LONG kLastPort = 65535;
    syntax.Number("--port", port, 1, kLastPort, "The port of --machine (default: 5986, plain HTTP 5985)");
    syntax.Text("--auth", authentication, "SCHEME",
                "How --machine is shown who asks: negotiate, ntlm or basic", {"negotiate", "ntlm", "basic"});
    syntax.Text("--user", user, "NAME", "Who asks --machine (default: the holder of the Kerberos ticket)");
    syntax.Number("--password-fd", passwordDescriptor, 0, kLastPort,
                  "Read the password of --user from this file descriptor");
    syntax.Text("--credentials", credentials, "FILE",
                "Read user and password from a file that nobody else can read");
    syntax.Text("--ca", authorities, "FILE", "Trust the certificates in this file instead of the system's");
    syntax.Flag("--insecure", isUnverified, "Take any certificate from --machine; warns each time");
    syntax.Flag("--plain-http", isPlain, "Reach --machine without TLS; warns unless it is this one");
}

std::string RemoteAccess::Given() const {
    return port                 ? "--port"
           : authentication     ? "--auth"
           : user               ? "--user"
           : passwordDescriptor ? "--password-fd"
           : credentials        ? "--credentials"
           : authorities        ? "--ca"
           : isUnverified       ? "--insecure"
           : isPlain            ? "--plain-http"
                                : "";
}

void CheckRemoteAccess(const GlobalOptions& options) {
    const RemoteAccess& access = options.remote;
    const std::string given = access.Given();
    if (given.empty()) {
        return;
    }
    if (AsksForSimulator(options)) {
        throw UsageError(given + ": a simulated machine is not reached over the network");
    }
    if (options.machine.empty()) {
        throw UsageError(given + ": goes with --machine");
    }
    if (HostHasWmi()) {
        throw UsageError(given + ": this host reaches machines by its own WMI");
    }
    const std::string scheme = access.authentication.value_or("");
    if (access.authentication && scheme != "negotiate" && scheme != "ntlm" && scheme != "basic") {
        throw UsageError("--auth: negotiate, ntlm or basic is needed");
    }
    if (scheme == "negotiate" && (access.user || access.passwordDescriptor || access.credentials)) {
        throw UsageError("--auth: negotiate goes by the Kerberos ticket (kinit) and takes no user");
    }
    if (access.credentials && (access.user || access.passwordDescriptor)) {
        throw UsageError("--credentials: has the user and the password; leave --user and --password-fd out");
    }
    if (access.passwordDescriptor && !access.user) {
        throw UsageError("--password-fd: goes with --user");
    }
}

} // namespace quilletctl
