// Reading several things of one object at the price of one fetch.
#pragma once

#include <memory>

namespace quillet {

class Session;

/// While one lives, what the calling thread reads of one object by several operations it fetches once: the
/// operations yield a picture of one moment, at the price of one. A change that the thread makes ends that
/// moment, and the next one begins. Threads beside it are not concerned.
class FetchOnce {
  public:
    /// Begins. One within another of the same session changes nothing.
    [[nodiscard]] explicit FetchOnce(Session& session);
    /// Ends, on the thread that it began on.
    ~FetchOnce();
    FetchOnce(const FetchOnce&) = delete;
    FetchOnce& operator=(const FetchOnce&) = delete;

  private:
    struct State;

    const std::unique_ptr<State> m_state;
};

} // namespace quillet
