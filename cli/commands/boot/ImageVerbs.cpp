// quilletctl boot inspect, verify: image files.
#include "app/List.h"
#include "commands/boot/BootCommand.h"
#include "commands/boot/BootVerbs.h"
#include "commands/boot/ImageFile.h"
#include "texts/Number.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

class InspectImageFile final : public BootCommand {
  public:
    void Declare(Syntax& syntax) override {
        BootCommand::Declare(syntax);
        syntax.Argument("file", m_file, "The image file");
        m_options.Declare(syntax);
    }

  private:
    ExitStatus RunForAgent(const ListedAdapter&, const quillet::BootAgent& agent, Invocation& run) override {
        const auto [verdict, images] = ReadImageFile(run.Session(), agent, m_file).contents;
        List list(m_options);
        for (const quillet::FlashImage& image : images) {
            list.AddRow({ToUtf8(image.type), ToUtf8(image.version), std::to_string(image.group),
                         ToUtf8(image.exposeLevel)},
                        Json{{"type", ToUtf8(image.type)},
                             {"version", ToUtf8(image.version)},
                             {"group", image.group},
                             {"exposeLevel", NumberIn(ToUtf8(image.exposeLevel)).value_or(0)}});
        }
        if (!verdict.IsGood() && !run.WantsJson()) {
            run.Out() << VerdictText(verdict) << '\n';
            return ExitStatus::Findings;
        }
        const auto answer = [&, said = verdict](Json entries) {
            return Json{{"file", m_file},
                        {"code", said.code},
                        {"text", VerdictText(said)},
                        {"images", std::move(entries)}};
        };
        const ExitStatus status = list.Answer(run, answer, "no images");
        return verdict.IsGood() ? status : ExitStatus::Findings;
    }

    std::string m_file;
    ListOptions m_options{{{"TYPE"}, {"VERSION"}, {"GROUP"}, {"LEVEL"}}};
};

class VerifyImageFile final : public ChosenImagesCommand {
    ExitStatus RunForAgent(const ListedAdapter&, const quillet::BootAgent& agent, Invocation& run) override {
        const ImageFile file = ReadImageFile(run.Session(), agent, File());
        const std::vector<std::wstring> types = ChooseImages(file, Types());
        const quillet::FlashVerdict verdict = VerifyImages(run.Session(), agent, file, types);
        if (run.WantsJson()) {
            run.Print(Json{{"file", File()},
                           {"code", verdict.code},
                           {"text", VerdictText(verdict)},
                           {"types", ImageNamesJson(types)}});
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
