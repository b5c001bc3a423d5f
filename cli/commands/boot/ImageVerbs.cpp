// quilletctl boot inspect, verify: image files.
#include "commands/boot/BootCommand.h"
#include "commands/boot/BootVerbs.h"
#include "commands/boot/ImageFile.h"
#include "terminal/Table.h"
#include "texts/Number.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

Json ImagesAsJson(const std::vector<quillet::FlashImage>& images) {
    Json list = Json::array();
    for (const quillet::FlashImage& image : images) {
        list.push_back(Json{{"type", ToUtf8(image.type)},
                            {"version", ToUtf8(image.version)},
                            {"group", image.group},
                            {"exposeLevel", NumberIn(ToUtf8(image.exposeLevel)).value_or(0)}});
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
    ExitStatus RunForAgent(const ListedAdapter&, const quillet::BootAgent& agent, Invocation& run) override {
        const auto [verdict, images] = ReadImageFile(run.Session(), agent, m_file).contents;
        if (run.WantsJson()) {
            run.Print(Json{{"file", m_file}, {"code", verdict.code}, {"images", ImagesAsJson(images)}});
        } else if (!verdict.IsGood()) {
            run.Out() << VerdictText(verdict) << '\n';
        } else if (images.empty()) {
            run.Out() << "no images\n";
        } else {
            Table table({{"TYPE", Fit::Whole},
                         {"VERSION", Fit::Whole},
                         {"GROUP", Fit::Whole},
                         {"LEVEL", Fit::Whole}});
            for (const quillet::FlashImage& image : images) {
                table.AddRow({ToUtf8(image.type), ToUtf8(image.version), std::to_string(image.group),
                              ToUtf8(image.exposeLevel)});
            }
            table.Print(run.Screen());
        }
        return verdict.IsGood() ? ExitStatus::Done : ExitStatus::Findings;
    }

    std::string m_file;
};

class VerifyImageFile final : public ChosenImagesCommand {
    ExitStatus RunForAgent(const ListedAdapter&, const quillet::BootAgent& agent, Invocation& run) override {
        const ImageFile file = ReadImageFile(run.Session(), agent, File());
        const std::vector<std::wstring> types = ChooseImages(file, Types());
        const quillet::FlashVerdict verdict = VerifyImages(run.Session(), agent, file, types);
        if (run.WantsJson()) {
            run.Print(Json{{"file", File()}, {"code", verdict.code}, {"types", ImageNamesJson(types)}});
        } else {
            run.Out() << VerdictText(verdict) << '\n';
        }
        return verdict.IsGood() ? ExitStatus::Done : ExitStatus::Findings;
    }
};

} // namespace

void AddImageVerbs(CommandTree::Noun& boot) {
    boot.Query("inspect", "List the images in an image file", std::make_unique<InspectImageFile>())
        .Query("verify", "Check an image file", std::make_unique<VerifyImageFile>());
}

} // namespace quilletctl
