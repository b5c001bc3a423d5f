// The boot agent of an adapter: what it holds, image files for it, and booting from iSCSI.
#pragma once

#include "model/GeneralPage.h"
#include "model/Page.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace quillet::pages {

/// An image of the file that is open.
struct OfferedImage {
    FlashImage image;
    bool isWanted = true;
};

/// The page "Boot" of an adapter. The place among the ports that boot from iSCSI is applied with the sheet;
/// the flash memory is written at once.
class BootPage : public Page {
  public:
    explicit BootPage(AdapterId adapter) : m_adapter(std::move(adapter)) {}

    Job Reading() override;
    bool IsChanged() const override;
    Change Changes() const override;
    bool MustNotBeLeft() const override { return m_isWriting; }

    /// What is known of the boot agent and of the system, a line each.
    const std::vector<Fact>& Facts() const noexcept { return m_facts; }
    bool HasAgent() const noexcept { return m_agent.has_value(); }

    /// @name Booting from iSCSI
    /// @{
    bool HasIscsi() const noexcept { return m_place.has_value(); }
    IscsiStatus Place() const noexcept { return m_place.value_or(IscsiStatus::NotBootPort); }
    /// The places that can be chosen, and the port's where that is another one.
    std::vector<IscsiStatus> Places() const;
    static std::wstring PlaceWords(IscsiStatus place);
    void SetPlace(IscsiStatus place);
    /// Why the place cannot be chosen; empty where it can.
    std::wstring WhyNoIscsi() const;
    /// @}

    /// @name Image files
    /// A job each. They tell how it went by the notice.
    /// @{
    Job Opening(const std::wstring& file); ///< looks into a file
    Job Verifying();                       ///< checks the file for the images that are wanted
    Job Writing();                         ///< writes them into the flash memory
    Job Saving(const std::wstring& file);  ///< writes the flash memory into a file
    /// @}
    /// The file that was opened last.
    const std::wstring& File() const noexcept { return m_file; }
    const std::vector<OfferedImage>& Images() const noexcept { return m_images; }
    void Want(std::size_t image, bool isWanted);
    /// Whether there is something that could be written.
    bool CanWrite() const;
    bool IsWriting() const noexcept { return m_isWriting; }
    /// What the user should know before it is written.
    std::wstring Consequence() const;
    /// Writing was wanted, and ended without an answer.
    void Fail(const std::wstring& reason);

  private:
    struct Read;
    struct Written;

    void Take(const Read& read, std::wstring notice);
    void TakePlace(const std::optional<IscsiStatus>& now, std::wstring& notice);
    void TakeFacts(const Read& read);
    std::vector<std::wstring> WantedTypes() const;
    /// Checks, writes and reads back, in a client set of its own.
    static Written Program(Session& session, const BootAgentId& agent, std::span<const std::byte> file,
                           const std::vector<std::wstring>& types,
                           const std::function<void(FlashStage)>& progress);
    static std::wstring Told(const Written& written);

    AdapterId m_adapter;
    std::optional<BootAgent> m_agent;
    std::vector<Fact> m_facts;
    BootAgentId m_port; ///< the adapter's entry among those that boot from iSCSI
    std::vector<IscsiAdapter> m_others;
    std::optional<IscsiStatus> m_readPlace;
    std::optional<IscsiStatus> m_place;
    std::wstring m_file;
    std::shared_ptr<const std::vector<std::uint8_t>> m_bytes;
    std::vector<OfferedImage> m_images;
    bool m_isWriting = false;
};

} // namespace quillet::pages
