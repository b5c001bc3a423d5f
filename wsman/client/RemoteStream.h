// Objects that come a page at a time.
#pragma once

#include "client/RemoteConnection.h"

#include <memory>
#include <vector>

namespace quillet::wsman {

/// What an enumeration asks for.
struct Asked {
    Endpoint endpoint{};
    std::wstring query{};                  ///< WQL; empty: all of the endpoint
    std::optional<wmi::WqlQuery> parsed{}; ///< of the query, where it can be read here
    std::wstring only{};       ///< instances of this class alone, and of none below it; empty: all
    std::wstring superclass{}; ///< classes directly below this one alone; for Shallow of classes
    bool isOfClasses = false;
    bool isShallow = false;
};

/// An enumeration on a machine. From its second object on it asks for each page as soon as it has the one
/// before, and it gives up what is left when it goes. Pages of one object are all fetched when their object
/// is asked for.
class RemoteStream final : public wmi::ObjectStream {
  public:
    /// Asks for the first page. Throws RemoteError.
    RemoteStream(const RemoteConnection& connection, const wmi::CallContext& context, Asked asked);
    ~RemoteStream() override;

    HRESULT Next(LONG timeout, std::span<wmi::Object> objects, ULONG& returned) override;
    HRESULT Reset() override;

  private:
    void Begin();
    void BeginPull();
    void Release() noexcept;
    Message MessageOf(std::string_view action, std::string body) const;
    std::string EnumerateBody() const;
    void Take(std::unique_ptr<Answer> answer);
    /// Fetches the next page; false when that takes longer.
    bool Pull(LONG timeout);
    /// The object of an item; nothing for one that was not asked for.
    std::optional<wmi::Object> ObjectOf(const Element& item) const;
    std::optional<wmi::Object> ClassOf(const Element& element) const;

    const RemoteConnection& m_connection;
    const wmi::CallContext m_context;
    const Asked m_asked;
    unsigned m_pageSize;
    std::unique_ptr<Answer> m_page;
    Element m_item;   ///< the next one of the page
    std::string m_id; ///< of the enumeration, as the machine told it last
    bool m_isEnd = false;
    bool m_isRead = false; ///< an object was taken
    unsigned m_emptyPages = 0;
    std::unique_ptr<Call> m_pull;
    HRESULT m_failure = S_OK;
    std::string m_failureText;
};

} // namespace quillet::wsman
