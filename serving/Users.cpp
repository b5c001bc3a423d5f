// Reading passwords.
#include "Users.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <openssl/crypto.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillet::serving {

namespace {

std::string LastError() {
    return std::generic_category().message(errno);
}

/// Bytes that are overwritten in the end.
class SecretBytes {
  public:
    ~SecretBytes() { OPENSSL_cleanse(m_bytes.data(), m_bytes.size()); }
    SecretBytes() = default;
    SecretBytes(const SecretBytes&) = delete;
    SecretBytes& operator=(const SecretBytes&) = delete;

    /// Reads to the end. @param from what it is, for a message
    void Read(int descriptor, const std::string& from) {
        for (;;) {
            const ssize_t read = ::read(descriptor, m_bytes.data() + m_size, m_bytes.size() - m_size);
            if (read == 0) {
                return;
            }
            if (read < 0 && errno != EINTR) {
                throw Mistake(from + ": cannot be read: " + LastError());
            }
            m_size += read > 0 ? static_cast<std::size_t>(read) : 0;
            if (m_size == m_bytes.size()) {
                throw Mistake(from + ": this is too long for passwords");
            }
        }
    }
    std::string_view Text() const { return {m_bytes.data(), m_size}; }

  private:
    std::array<char, 65'536> m_bytes{};
    std::size_t m_size = 0;
};

/// A file that is to be read, and that nobody else can.
class PrivateFile {
  public:
    explicit PrivateFile(const std::string& file) : m_descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
        struct stat status = {};
        if (m_descriptor < 0 || fstat(m_descriptor, &status) != 0) {
            throw Mistake(file + ": cannot be read: " + LastError());
        }
        constexpr mode_t kOfOthers = 077;
        if (status.st_uid != geteuid() || (status.st_mode & kOfOthers) != 0) {
            close(m_descriptor);
            throw Mistake(file +
                          ": passwords are for their owner alone: the file must be yours, with mode 0600");
        }
    }
    ~PrivateFile() { close(m_descriptor); }
    PrivateFile(const PrivateFile&) = delete;
    PrivateFile& operator=(const PrivateFile&) = delete;

    int Descriptor() const { return m_descriptor; }

  private:
    int m_descriptor;
};

/// The next line, which is taken off the text.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

void Add(wsman::Passwords& users, const std::string& name, std::string_view password,
         const std::string& place) {
    try {
        users.Add(name, password);
    } catch (const std::invalid_argument& mistake) {
        throw Mistake(place + ": " + mistake.what());
    }
}

} // namespace

wsman::Passwords ReadUsers(const Options& options) {
    wsman::Passwords users;
    if (!options.user.empty()) {
        SecretBytes bytes;
        std::string from = options.passwordFile;
        if (options.passwordDescriptor) {
            from = "--password-fd " + std::to_string(*options.passwordDescriptor);
            bytes.Read(*options.passwordDescriptor, from);
        } else {
            bytes.Read(PrivateFile(options.passwordFile).Descriptor(), from);
        }
        std::string_view text = bytes.Text();
        Add(users, options.user, TakeLine(text), from);
    }
    if (!options.usersFile.empty()) {
        SecretBytes bytes;
        bytes.Read(PrivateFile(options.usersFile).Descriptor(), options.usersFile);
        std::string_view text = bytes.Text();
        for (int number = 1; !text.empty(); ++number) {
            const std::string_view line = TakeLine(text);
            const std::string place = options.usersFile + ':' + std::to_string(number);
            if (line.empty() || line.starts_with('#')) {
                continue;
            }
            const std::size_t colon = line.find(':');
            if (colon == std::string_view::npos) {
                throw Mistake(place + ": this is no NAME:PASSWORD");
            }
            Add(users, std::string(line.substr(0, colon)), line.substr(colon + 1), place);
        }
        if (users.IsEmpty()) { // everybody could ask
            throw Mistake(options.usersFile + ": there is no user in it");
        }
    }
    return users;
}

} // namespace quillet::serving
