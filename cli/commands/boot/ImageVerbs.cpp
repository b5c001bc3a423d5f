// quilletctl boot inspect, verify: image files.
#include "commands/boot/BootCommand.h"
#include "commands/boot/BootVerbs.h"
#include "commands/boot/ImageFile.h"
#include "terminal/Table.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

Json ImagesAsJson(const CSettings& images) {
    Json list = Json::array();
    for (const CSetting* image : images.m_vecItems) {
        list.push_back(Json{{"type", ToUtf8(image->m_wsCaption)},
                            {"version", ToUtf8(image->GetCurrentValue())},
                            {"group", image->m_lGroupId},
                            {"exposeLevel", image->GetExposeLevel()}});
    }
    return list;
}

class InspectImageFile final : public BootCommand {
  public:
    void Declare(Syntax& syntax) override {
        BootCommand::Declare(syntax);
        syntax.Argument("file", m_file, "The image file");
    }

  private:
    ExitStatus RunForAgent(const ListedAdapter&, const CBootAgent& agent, Invocation& run) override {
        const ImageFile file = ReadImageFile(run.Session(), agent, m_file);
        if (run.WantsJson()) {
            run.Print(Json{{"file", m_file}, {"code", file.code}, {"images", ImagesAsJson(file.images)}});
        } else if (file.code != 0) {
            run.Out() << VerdictText(file.code) << '\n';
        } else if (file.images.m_vecItems.empty()) {
            run.Out() << "no images\n";
        } else {
            Table table({{"TYPE", Fit::Whole},
                         {"VERSION", Fit::Whole},
                         {"GROUP", Fit::Whole},
                         {"LEVEL", Fit::Whole}});
            for (const CSetting* image : file.images.m_vecItems) {
                table.AddRow({ToUtf8(image->m_wsCaption), ToUtf8(image->GetCurrentValue()),
                              std::to_string(image->m_lGroupId), ToUtf8(image->m_wsExposeLevel)});
            }
            table.Print(run.Screen());
        }
        return file.code == 0 ? ExitStatus::Done : ExitStatus::Findings;
    }

    std::string m_file;
};

class VerifyImageFile final : public ChosenImagesCommand {
    ExitStatus RunForAgent(const ListedAdapter&, const CBootAgent& agent, Invocation& run) override {
        ImageFile file = ReadImageFile(run.Session(), agent, File());
        CSettings types = ChooseImages(file, Types());
        const int code = file.code != 0 ? file.code : VerifyImages(run.Session(), agent, file, types);
        if (run.WantsJson()) {
            run.Print(Json{{"file", File()}, {"code", code}, {"types", ImageNamesJson(types)}});
        } else {
            run.Out() << VerdictText(code) << '\n';
        }
        return code == 0 ? ExitStatus::Done : ExitStatus::Findings;
    }
};

} // namespace

void AddImageVerbs(CommandTree::Noun& boot) {
    boot.Query("inspect", "List the images in an image file", std::make_unique<InspectImageFile>())
        .Query("verify", "Check an image file", std::make_unique<VerifyImageFile>());
}

} // namespace quilletctl
