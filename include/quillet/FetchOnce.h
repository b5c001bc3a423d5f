// Reading several things of one object at the price of one fetch.
#pragma once

#include <quillet/Export.h>

#include <memory>

class CQuillet;
class FetchedObjects;

/// While one lives, the operations that its thread runs on a session fetch each object that they read by its
/// path only once: what one operation has fetched, the next one reads as well, and a fetch that failed has
/// failed for the next one, too. What each operation yields is a picture of that moment. A change that the
/// thread makes forgets all of it.
///
/// Operations of other threads, partial data and enumerations are as ever. A second one on the same session
/// and thread changes nothing. It must end on the thread that it began on, and before the session does.
class QUILLET_API CFetchOnce {
  public:
    /// Begins. @param quillet the session
    explicit CFetchOnce(const CQuillet& quillet);
    /// Ends; what was fetched is released.
    ~CFetchOnce();
    CFetchOnce(const CFetchOnce&) = delete;
    CFetchOnce& operator=(const CFetchOnce&) = delete;

  private:
    const std::unique_ptr<FetchedObjects> m_objects; ///< null: an earlier one serves this session already
};
