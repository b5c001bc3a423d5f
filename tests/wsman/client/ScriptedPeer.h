// A peer that answers as a test says, right or wrong.
#pragma once

#include <quillet-wsman/Remote.h>

#include <quillet-wmi/Connection.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quillet::tests {

/// What a peer got.
struct PeerRequest {
    std::string head;
    std::string body;
    int connection = 0; ///< the first one is 1

    bool Has(std::string_view text) const { return body.find(text) != std::string::npos; }
    /// The text of the first element of a local name; empty where there is none.
    std::string TextOf(const std::string& element) const;
};

class ScriptedPeer {
  public:
    /// The bytes that go back. None: the connection is ended at once.
    using Script = std::function<std::string(const PeerRequest&)>;
    /// In place of bytes: nothing comes until the peer goes.
    static const std::string kSilence;

    explicit ScriptedPeer(Script script);
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    int Port() const noexcept { return m_port; }
    /// What came until now, without what is asked while connecting.
    std::vector<PeerRequest> Requests() const;

  private:
    void Run();
    void Serve(int socket, int connection);

    const Script m_script;
    int m_listener = -1;
    int m_port = 0;
    std::atomic<bool> m_isOver{false};
    mutable std::mutex m_mutex;
    std::vector<PeerRequest> m_requests;
    std::thread m_thread;
};

/// An answer of HTTP.
std::string HttpAnswerOf(int status, const std::string& type, const std::string& body);
/// One with an envelope around a body; it relates to the request.
std::string SoapAnswer(const PeerRequest& request, const std::string& body, int status = 200);
/// A fault with a subcode and whatever stands in its detail.
std::string FaultAnswer(const PeerRequest& request, const std::string& subcode,
                        const std::string& detail = {});
/// "Identify" is answered as by Windows, the name is not told, and all else is the script's to answer.
ScriptedPeer::Script AfterIdentify(ScriptedPeer::Script script);

/// The way to a peer on this computer without TLS.
wsman::RemoteOptions OptionsFor(int port);
/// A connection, and how that ended.
std::shared_ptr<wmi::Connection> ConnectTo(const wsman::RemoteOptions& options, HRESULT expected = S_OK,
                                           const std::shared_ptr<wmi::Host>& host = {});
/// A code as people know it.
std::string CodeOf(long long code);

} // namespace quillet::tests
