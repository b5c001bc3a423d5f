// What a peer sends, a request at a time.
#pragma once

#include "server/HttpFraming.h"
#include "server/Wire.h"

#include <string>
#include <string_view>

namespace quillet::wsman {

/// The head of a request is read as a whole before anybody looks at it; of the rest nobody gets more than
/// belongs to the request.
class HttpInput {
  public:
    explicit HttpInput(Wire& wire) : m_wire(wire) {}

    /// Waits for a request; false: there is none any more.
    bool HasMore() { return m_place < m_pending.size() || Fill(); }
    /// A whole head; empty where the connection ends before, and for what is none after that many bytes.
    std::string_view ReadHead(std::size_t most);
    /// Whether the head was too long.
    bool HasTooMuch(std::size_t most) const { return m_pending.size() > most; }

    /// How much more of the request there is to read.
    void Allow(std::size_t bytes) { m_left = bytes; }
    /// At least one byte; 0 at the end of the connection, -1 for a failure and beyond what there is.
    ssize_t Read(char* bytes, std::size_t size);
    /// Whether an empty line is the last that was read, as after the last chunk.
    bool HasReadEnd() const { return m_last == "\r\n\r\n"; }
    /// Reads what nobody read of the request.
    bool Discard();

  private:
    /// Gets more; false at the end.
    bool Fill();

    Wire& m_wire;
    std::string m_pending;
    std::size_t m_place = 0;
    std::size_t m_left = 0;
    std::string m_last; ///< the last few bytes that were read
};

} // namespace quillet::wsman
