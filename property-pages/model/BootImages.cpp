// Image files: looking into them, and writing the flash memory.
#include "model/BootPage.h"

#include "files/Files.h"

#include <quillet/client/Text.h>

#include <algorithm>
#include <filesystem>
#include <span>
#include <stdexcept>

namespace quillet::pages {

namespace {

/// No flash memory is as large: what is longer is another kind of file, and not read.
constexpr std::uintmax_t kLargestImage = 64U << 20U;

using Bytes = std::shared_ptr<const std::vector<std::uint8_t>>;

std::span<const std::byte> In(const Bytes& bytes) {
    return std::as_bytes(std::span(*bytes));
}

Bytes ReadImage(const std::string& file) {
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(quilletctl::FilePath(file), unknown);
    if (!unknown && (size == 0 || size > kLargestImage)) {
        throw std::runtime_error(ToUtf8(Say(TextId::FlashNoImage)));
    }
    return std::make_shared<const std::vector<std::uint8_t>>(quilletctl::ReadWholeFile(file));
}

std::wstring VerdictWords(FlashVerdict verdict) {
    if (verdict.IsGood()) {
        return Say(TextId::FlashGood);
    }
    return Say(verdict.IsReadable() ? TextId::FlashRefused : TextId::FlashUnreadable,
               {std::to_wstring(verdict.code)});
}

TextId StageWords(FlashStage stage) {
    switch (stage) {
    case FlashStage::Verifying:
        return TextId::FlashChecking;
    case FlashStage::Writing:
        return TextId::FlashWriting;
    case FlashStage::ReadingBack:
        break;
    }
    return TextId::FlashReadingBack;
}

} // namespace

/// How writing went.
struct BootPage::Written {
    FlashOutcome outcome;
    std::wstring failure; ///< after the writing began
    bool restartNeeded = false;
};

Job BootPage::Opening(const std::wstring& file) {
    return [page = Self<BootPage>(), file,
            agent = m_agent.value_or(BootAgent()).id](Session& session, const Asking&) -> Answer {
        const Bytes bytes = ReadImage(ToUtf8(file));
        const FlashContents contents = session.ReadImageFile(agent, In(bytes));
        return [page, file, bytes, contents] {
            page->m_file = file;
            page->m_bytes = bytes;
            page->m_images.clear();
            for (const FlashImage& image : contents.images) {
                page->m_images.push_back({image});
            }
            page->SetNotice(contents.verdict.IsGood() ? std::wstring() : VerdictWords(contents.verdict));
        };
    };
}

void BootPage::Want(std::size_t image, bool isWanted) {
    if (image < m_images.size()) {
        m_images[image].isWanted = isWanted;
        NoteChange();
    }
}

std::vector<std::wstring> BootPage::WantedTypes() const {
    std::vector<std::wstring> types;
    for (const OfferedImage& offered : m_images) {
        if (offered.isWanted) {
            types.push_back(offered.image.type);
        }
    }
    return types;
}

bool BootPage::CanWrite() const {
    return HasAgent() && !m_isWriting && std::ranges::any_of(m_images, &OfferedImage::isWanted);
}

Job BootPage::Verifying() {
    return [page = Self<BootPage>(), agent = m_agent.value_or(BootAgent()).id, bytes = m_bytes,
            types = WantedTypes()](Session& session, const Asking&) -> Answer {
        const FlashVerdict verdict = session.VerifyImages(agent, In(bytes), types);
        return [page, verdict] { page->SetNotice(VerdictWords(verdict)); };
    };
}

std::wstring BootPage::Consequence() const {
    std::wstring types;
    for (const std::wstring& type : WantedTypes()) {
        types += (types.empty() ? L"" : L", ") + type;
    }
    return Say(TextId::FlashConsequence, {types});
}

Job BootPage::Writing() {
    m_isWriting = true;
    SetNotice(Say(TextId::FlashChecking));
    return [page = Self<BootPage>(), agent = m_agent.value_or(BootAgent()).id, bytes = m_bytes,
            types = WantedTypes(), reading = Reading()](Session& session, const Asking& asking) -> Answer {
        const auto tell = [&asking, &page](FlashStage stage) {
            asking.Show([page, stage] { page->SetNotice(Say(StageWords(stage))); });
        };
        const Written written = Program(session, agent, In(bytes), types, tell);
        Answer read = [] {};
        try {
            read = reading(session, asking);
        } catch (const std::exception&) {
            // What cannot be read now does not undo what was written.
        }
        return [page, written, read] {
            page->m_isWriting = false;
            read();
            page->SetNotice(Told(written));
            if (written.restartNeeded && page->restartNeeded) {
                page->restartNeeded();
            }
        };
    };
}

BootPage::Written BootPage::Program(Session& session, const BootAgentId& agent,
                                    std::span<const std::byte> file, const std::vector<std::wstring>& types,
                                    const std::function<void(FlashStage)>& progress) {
    Written written;
    FlashStage stage = FlashStage::Verifying;
    Transaction transaction(session);
    try {
        written.outcome = session.ProgramFlash(agent, file, types, [&](FlashStage reached) {
            stage = reached;
            progress(reached);
        });
        if (!written.outcome.verdict.IsGood() && stage != FlashStage::Verifying) {
            written.failure = Say(TextId::CodeNumber, {std::to_wstring(written.outcome.verdict.code)});
        }
    } catch (const Error& error) {
        if (stage == FlashStage::Verifying) {
            throw; // nothing has been written
        }
        written.failure = Reason(error);
    }
    try {
        written.restartNeeded = transaction.Apply().restartNeeded;
    } catch (const Error& error) {
        written.failure = Reason(error);
    }
    return written;
}

std::wstring BootPage::Told(const Written& written) {
    if (!written.failure.empty()) {
        return Say(written.outcome.written ? TextId::FlashNotApplied : TextId::FlashUnknown,
                   {written.failure});
    }
    if (!written.outcome.verdict.IsGood()) {
        return VerdictWords(written.outcome.verdict);
    }
    return Say(written.outcome.written ? TextId::FlashWritten : TextId::FlashDiffers);
}

void BootPage::Fail(const std::wstring& reason) {
    m_isWriting = false;
    SetNotice(Say(TextId::NotDone, {reason}));
}

Job BootPage::Saving(const std::wstring& file) {
    return [page = Self<BootPage>(), file,
            agent = m_agent.value_or(BootAgent()).id](Session& session, const Asking&) -> Answer {
        const std::vector<std::byte> bytes = session.ReadFlash(agent);
        quilletctl::ReplaceWholeFile(ToUtf8(file),
                                     {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        return [page, file, size = bytes.size()] {
            page->SetNotice(Say(TextId::FlashSaved, {file, std::to_wstring(size)}));
        };
    };
}

} // namespace quillet::pages
