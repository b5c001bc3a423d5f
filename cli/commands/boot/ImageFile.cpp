// Reading image files, and asking what the provider thinks of them.
#include "commands/boot/ImageFile.h"

#include "ending/Failure.h"
#include "files/Files.h"
#include "texts/InWords.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace quilletctl {

ImageFile ReadImageFile(quillet::Session& session, const quillet::BootAgent& agent, const std::string& name) {
    ImageFile file;
    file.bytes = ReadWholeFile(name);
    if (file.bytes.empty() ||
        file.bytes.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw UsageError(name + ": no image is as " + (file.bytes.empty() ? "short" : "long") +
                         " as this file");
    }
    file.contents =
        Attempt("look into " + name, [&] { return session.ReadImageFile(agent.id, file.Bytes()); });
    return file;
}

std::vector<std::wstring> ChooseImages(const ImageFile& file, const std::vector<std::string>& names) {
    std::vector<std::wstring> types;
    types.reserve(names.size());
    for (const std::string& name : names) {
        types.push_back(ToWide(name));
    }
    if (names.empty()) {
        for (const quillet::FlashImage& image : file.contents.images) {
            types.push_back(image.type);
        }
    }
    return types;
}

quillet::FlashVerdict VerifyImages(quillet::Session& session, const quillet::BootAgent& agent,
                                   const ImageFile& file, const std::vector<std::wstring>& types) {
    if (!file.contents.verdict.IsGood()) {
        return file.contents.verdict;
    }
    return Attempt("check the image file",
                   [&] { return session.VerifyImages(agent.id, file.Bytes(), types); });
}

std::string ImageNames(const std::vector<std::wstring>& types) {
    std::string names;
    for (const std::wstring& type : types) {
        names += (names.empty() ? "" : ", ") + ToUtf8(type);
    }
    return names.empty() ? "no image" : names;
}

Json ImageNamesJson(const std::vector<std::wstring>& types) {
    Json names = Json::array();
    for (const std::wstring& type : types) {
        names.push_back(ToUtf8(type));
    }
    return names;
}

std::string VerdictText(quillet::FlashVerdict verdict) {
    if (verdict.IsGood()) {
        return "the image file is right";
    }
    return "the image file is refused: " + std::string(verdict.IsReadable() ? "" : "it cannot be read: ") +
           UnknownText(verdict.code);
}

} // namespace quilletctl
