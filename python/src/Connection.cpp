// Connecting and disconnecting, and the one client set that a session has.
#include "Connection.h"

#include <quillet-wmi/Registration.h>

#ifdef QUILLET_PYTHON_REMOTE
#include <quillet-wsman/Remote.h>
#endif

#include <stdexcept>

namespace quillet::python {

namespace {

/// Whether this thread's last operation asked a machine over the network.
thread_local bool g_isRemote = false;

/// A process has one place where connections come from; a session needs it only until it is connected. So
/// there may be sessions with many machines.
std::shared_ptr<Session> Connect(std::shared_ptr<wmi::Host> host, const std::wstring& machine,
                                 bool isRemote) {
    static std::mutex registering;
    g_isRemote = isRemote;
    const ComUsage com;
    const std::scoped_lock lock(registering);
    const wmi::ClassRegistration registration(std::move(host));
    if (FAILED(registration.Result())) {
        throw Error(registration.Result(), "CoRegisterClassObject", machine);
    }
    return std::make_shared<Session>(SessionOptions{.machine = machine});
}

} // namespace

struct Connection::Texts {
    explicit Texts(std::shared_ptr<Session> connected) : session(std::move(connected)), texts(*session) {}

    const std::shared_ptr<Session> session;
    std::mutex mutex;
    ProviderTexts texts;
};

Connection::Connection(std::shared_ptr<wmi::Host> host, const std::wstring& machine, bool isRemote)
    : m_isRemote(isRemote), m_session(Connect(std::move(host), machine, isRemote)) {}

Connection::~Connection() {
    // Disconnecting asks the machine, so others may run meanwhile.
    const Unlocked unlocked;
    Close();
}

std::shared_ptr<Session> Connection::Use() {
    g_isRemote = m_isRemote;
    const std::scoped_lock lock(m_mutex);
    return Open();
}

std::shared_ptr<Session> Connection::Open() const {
    if (!m_session) {
        throw std::invalid_argument("the machine is closed");
    }
    return m_session;
}

bool Connection::IsOpen() const {
    const std::scoped_lock lock(m_mutex);
    return m_session != nullptr;
}

void Connection::Close() {
    // They go when nobody waits for the lock any more: the provider is asked. The session goes last.
    std::shared_ptr<Session> session;
    std::shared_ptr<Texts> texts;
    std::shared_ptr<Transaction> change;
    const std::scoped_lock lock(m_mutex);
    session.swap(m_session);
    texts.swap(m_texts);
    change.swap(m_change);
}

void Connection::Begin() {
    g_isRemote = m_isRemote;
    const std::scoped_lock lock(m_mutex);
    const std::shared_ptr<Session> session = Open();
    if (m_change) {
        throw std::invalid_argument("changes are under way on this machine already");
    }
    m_change = std::make_shared<Transaction>(*session);
}

bool Connection::Apply() {
    const std::shared_ptr<Session> session = Use();
    const std::shared_ptr<Transaction> change = TakeChange();
    if (!change) {
        throw std::invalid_argument("no changes are under way");
    }
    return change->Apply().restartNeeded;
}

void Connection::Abandon() {
    std::shared_ptr<Session> session;
    {
        const std::scoped_lock lock(m_mutex);
        session = m_session;
    }
    TakeChange().reset();
}

std::wstring Connection::ProviderText(const ValueSource& source, std::int32_t number) {
    g_isRemote = m_isRemote;
    std::shared_ptr<Texts> texts;
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_texts) {
            m_texts = std::make_shared<Texts>(Open());
        }
        texts = m_texts;
    }
    const std::scoped_lock lock(texts->mutex);
    return texts->texts.Of(source, number);
}

std::shared_ptr<Transaction> Connection::TakeChange() {
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_change, nullptr);
}

std::string FailureDetails([[maybe_unused]] const Error& error) {
#ifdef QUILLET_PYTHON_REMOTE
    return g_isRemote ? wsman::LastFailure() : std::string();
#else
    return {};
#endif
}

} // namespace quillet::python
