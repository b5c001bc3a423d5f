// The journal: every call that a client makes, in order, as a test or a person wants to read it.
#pragma once

#include <quillet-wmi/Connection.h>
#include <quillet-wmi/Operation.h>

#include <atomic>
#include <functional>
#include <memory>

namespace quillet::simulator {

// A machine is described in WMI's own words.
using namespace wmi;

/// One call.
struct JournalEntry {
    Operation operation = Operation::GetObject; ///< what was called
    std::wstring target;                        ///< class name, object path, query text or property name
    std::wstring method;                        ///< ExecMethod, GetMethod and Unsupported
    /// In-parameters, or the properties put, in the order of the puts; the text *** in place of a secret.
    std::vector<NamedValue> arguments;
    std::vector<NamedValue> context; ///< the context's values at the time of the call, by name
    bool hasContext = false;         ///< whether a context was passed at all
    LONG flags = 0;                  ///< as the client gave them
    DWORD thread = 0;                ///< GetCurrentThreadId() of the caller
    HRESULT result = 0;              ///< what the client got
    std::wstring note; ///< what the machine let pass but a stricter one would refuse; mostly empty

    /// The in-parameter or property of that name, without regard to case; null when there is none.
    const NamedValue* Argument(std::wstring_view name) const noexcept;
    /// The context value of that name, likewise.
    const NamedValue* ContextValue(std::wstring_view name) const noexcept;
    /// One line for people: "ExecMethod \\…:Zorel_NetService…, Apply(ClientSetHandle=7) -> 0x00000000".
    /// Parameters and properties marked as secrets in the schema print as ***; long values are shortened.
    std::wstring Line() const;
};

/// Safe for many threads.
class Journal {
  public:
    Journal();
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// Writes a call down.
    void Add(JournalEntry entry);
    /// Forgets all calls.
    void Clear();
    /// Everything, in order, and forgets it: no call is lost in between.
    std::vector<JournalEntry> Take();
    /// Everything, in order.
    std::vector<JournalEntry> All() const;
    /// Only what reached the provider.
    std::vector<JournalEntry> ProviderCalls() const;
    /// Only the calls of one operation.
    std::vector<JournalEntry> Of(Operation operation) const;
    /// How many entries there are, cheaply.
    std::size_t Size() const;

    /// Also records the calls that stay with the client (Get, Put, SetBlanket, …). Off at first: there are
    /// dozens of them for each provider call.
    void RecordLocal(bool record) noexcept { m_recordLocal.store(record, std::memory_order_relaxed); }
    /// Whether it records them.
    bool RecordsLocal() const noexcept { return m_recordLocal.load(std::memory_order_relaxed); }

  private:
    struct Part;
    struct Parts;

    std::vector<JournalEntry> Those(const std::function<bool(const JournalEntry&)>& wanted) const;

    const std::unique_ptr<Parts> m_parts;
    std::atomic<bool> m_recordLocal{false};
};

} // namespace quillet::simulator
