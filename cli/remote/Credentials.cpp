// Reading credentials.
#include "remote/Credentials.h"

#include "ending/Failure.h"
#include "secrets/SecretInput.h"
#include "texts/Text.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <windows.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace quilletctl {

namespace {

using quillet::wsman::Password;

/// A file of its own user's alone, which nobody else could have written or read.
class PrivateFile {
  public:
    explicit PrivateFile(const std::string& name) : m_descriptor(open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
        struct stat about = {};
        if (m_descriptor < 0 || fstat(m_descriptor, &about) != 0) {
            const int error = errno;
            Close();
            throw UsageError(name + ": cannot be read: " + std::strerror(error));
        }
        constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
        if (!S_ISREG(about.st_mode) || about.st_uid != geteuid() || (about.st_mode & kOthers) != 0) {
            Close();
            throw UsageError(name +
                             ": a file with a password must be yours, and readable by you alone (chmod 600)");
        }
    }
    ~PrivateFile() { Close(); }
    PrivateFile(const PrivateFile&) = delete;
    PrivateFile& operator=(const PrivateFile&) = delete;

    int Descriptor() const noexcept { return m_descriptor; }

  private:
    void Close() noexcept {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
        m_descriptor = -1;
    }
    int m_descriptor;
};

/// The next line; false at the end.
bool ReadLine(int descriptor, SecretLine& line) {
    char byte = '\0';
    bool isLine = false;
    while (ReadByte(descriptor, byte)) {
        isLine = true;
        if (byte == '\n') {
            break;
        }
        line.Append(byte);
    }
    return isLine;
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

Credentials FromFile(const std::string& name) {
    const PrivateFile file(name);
    Credentials read;
    for (std::size_t number = 1;; ++number) {
        SecretLine line;
        if (!ReadLine(file.Descriptor(), line)) {
            break;
        }
        const std::string_view text = Trimmed(line.Text());
        const std::size_t sign = text.find('=');
        const std::string_view key = Trimmed(text.substr(0, sign));
        const std::string_view value =
            sign == std::string_view::npos ? std::string_view() : Trimmed(text.substr(sign + 1));
        if (text.empty() || text.starts_with('#')) {
            continue;
        }
        if (sign != std::string_view::npos && key == "user") {
            read.user = value;
        } else if (sign != std::string_view::npos && key == "password") {
            read.password = Password(value);
        } else {
            // What stands there is not repeated: it may be the password.
            throw UsageError(name + ':' + std::to_string(number) +
                             ": this is neither \"user = …\" nor \"password = …\"");
        }
    }
    if (read.user.empty() || read.password.IsEmpty()) {
        throw UsageError(name + ": a line \"user = …\" and a line \"password = …\" are needed");
    }
    return read;
}

Password FromDescriptor(int descriptor) {
    SecretLine line;
    if (!ReadLine(descriptor, line)) {
        throw UsageError("--password-fd: there is no line to read");
    }
    std::string_view text = line.Text();
    text.remove_suffix(text.ends_with('\r') ? 1 : 0);
    if (text.empty() || !IsUtf8(text)) {
        throw UsageError("--password-fd: a password is a line of text");
    }
    return Password(text);
}

Password FromTerminal(const std::string& user, const std::string& machine) {
    const quillet::Secret secret = SecretInput().Read("Password of " + user + " on " + machine);
    std::string text;
    constexpr std::size_t kLongestCharacter = 4;
    text.reserve(secret.Reveal().size() * kLongestCharacter); // growing would leave a copy behind
    for (const wchar_t& character : secret.Reveal()) {
        text += ToUtf8({&character, 1});
    }
    Password password(text);
    SecureZeroMemory(text.data(), text.size());
    return password;
}

} // namespace

Credentials ReadCredentials(const RemoteAccess& access, const std::string& machine) {
    const char* variable = std::getenv("QUILLET_CREDENTIALS");
    const bool isNegotiated = access.authentication == "negotiate";
    std::string file = access.credentials.value_or("");
    if (file.empty() && !access.user && !isNegotiated && variable != nullptr) {
        file = variable;
    }
    if (file.empty() && !access.user) {
        return {};
    }
    // A core would have the password in it.
    constexpr rlimit kNone{0, 0};
    setrlimit(RLIMIT_CORE, &kNone);
    if (!file.empty()) {
        return FromFile(file);
    }
    if (access.passwordDescriptor) {
        return {*access.user, FromDescriptor(static_cast<int>(*access.passwordDescriptor))};
    }
    return {*access.user, FromTerminal(*access.user, machine)};
}

} // namespace quilletctl
