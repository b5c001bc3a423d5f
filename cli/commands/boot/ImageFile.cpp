// Reading image files, and asking what the provider thinks of them.
#include "commands/boot/ImageFile.h"

#include "ending/Failure.h"
#include "files/Files.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <memory>

namespace quilletctl {

ImageFile ReadImageFile(CQuillet& session, const CBootAgent& agent, const std::string& name) {
    ImageFile file;
    file.bytes = ReadWholeFile(name);
    if (file.bytes.empty() ||
        file.bytes.size() > static_cast<std::size_t>(std::numeric_limits<LONG>::max())) {
        throw UsageError(name + ": no image is as " + (file.bytes.empty() ? "short" : "long") +
                         " as this file");
    }
    ThrowIfRefused(session.ReadBootAgentImageFile(agent.m_wsBootAgentID, file.Size(), file.bytes.data(),
                                                  file.images, file.code),
                   "look into " + name);
    return file;
}

CSettings ChooseImages(const ImageFile& file, const std::vector<std::string>& names) {
    if (names.empty()) {
        return file.images;
    }
    CSettings chosen;
    for (const std::string& name : names) {
        auto image = std::make_unique<CSettingString>();
        image->m_wsCaption = ToWide(name);
        chosen.m_vecItems.push_back(image.get());
        static_cast<void>(image.release()); // the list owns it
    }
    return chosen;
}

int VerifyImages(CQuillet& session, const CBootAgent& agent, ImageFile& file, CSettings& types) {
    int code = 0;
    ThrowIfRefused(
        session.VerifyImageType(agent.m_wsBootAgentID, file.Size(), file.bytes.data(), types, code),
        "check the image file");
    return code;
}

std::string ImageNames(const CSettings& types) {
    std::string names;
    for (const CSetting* type : types.m_vecItems) {
        names += (names.empty() ? "" : ", ") + ToUtf8(type->m_wsCaption);
    }
    return names.empty() ? "no image" : names;
}

Json ImageNamesJson(const CSettings& types) {
    Json names = Json::array();
    for (const CSetting* type : types.m_vecItems) {
        names.push_back(ToUtf8(type->m_wsCaption));
    }
    return names;
}

std::string VerdictText(int code) {
    if (code == 0) {
        return "the image file is right";
    }
    // All that is known of the provider's codes.
    const bool isReadable = (code & 1) == 0;
    return "the image file is refused: " + std::string(isReadable ? "" : "it cannot be read: ") + "code " +
           std::to_string(code);
}

} // namespace quilletctl
