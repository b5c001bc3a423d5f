// Enumerations that clients have begun and not ended.
#pragma once

#include "soap/Addressing.h"

#include <quillet-wmi/Connection.h>

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace quillet::wsman {

/// What the items of an enumeration are.
enum class ItemForm { Object, Reference, ObjectAndReference };

/// An enumeration between two requests.
struct Enumeration {
    std::shared_ptr<wmi::Connection> connection; ///< which the objects come from
    std::unique_ptr<wmi::ObjectStream> objects;
    std::string resource; ///< the URI that it was begun for
    ItemForm form = ItemForm::Object;
    bool isProjection = false; ///< the objects have some of the properties of their class only
    wmi::Object waiting;       ///< the object that did not fit into the last answer
    bool isWaiting = false;    ///< whether there is one
    HRESULT failure = S_OK;    ///< what came after the objects of the last answer
};

/// Safe for many threads. An enumeration belongs to the user who began it, to whom alone its identifier,
/// which cannot be guessed, means anything.
class Enumerations {
  public:
    using Clock = std::chrono::steady_clock;

    /// @param most how many there may be @param idle after which time without a request one is forgotten
    Enumerations(std::size_t most, Clock::duration idle) : m_most(most), m_idle(idle) {}

    /// Keeps one; its identifier, or nothing where there are too many.
    std::string Keep(const std::string& user, Enumeration enumeration);
    /// Puts back one that was taken out, under the identifier that it had.
    void PutBack(const std::string& user, const std::string& id, std::unique_ptr<Enumeration> enumeration);
    /// Takes one out; null where there is none of that identifier, user and resource.
    std::unique_ptr<Enumeration> Take(const std::string& user, const std::string& id,
                                      const std::string& resource);

  private:
    struct Kept {
        std::string user;
        Clock::time_point since;
        std::unique_ptr<Enumeration> enumeration;
    };
    void ForgetIdle();

    const std::size_t m_most;
    const Clock::duration m_idle;
    std::mutex m_mutex;
    std::map<std::string, Kept> m_kept;
};

} // namespace quillet::wsman
