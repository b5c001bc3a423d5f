// quilletctl boot show, read: the boot agent of an adapter and its flash memory.
#include "app/Answers.h"
#include "commands/boot/BootCommand.h"
#include "commands/boot/BootVerbs.h"
#include "commands/boot/ImageFile.h"
#include "commands/Commands.h"
#include "files/Files.h"
#include "names/ObjectPath.h"
#include "texts/InWords.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

class ShowBootAgent final : public BootCommand {
    ExitStatus RunForAgent(const ListedAdapter& adapter, const quillet::BootAgent& agent,
                           Invocation& run) override {
        const std::string path = PathOf(agent.id);
        const std::string version = ToUtf8(agent.version);
        const std::string imageType =
            agent.imageTypeText.empty() ? UnknownText(agent.imageType) : ToUtf8(agent.imageTypeText);
        const auto place = static_cast<quillet::IscsiStatus>(agent.iscsiStatus);
        const std::vector<std::wstring> images = quillet::ImageTypes(agent.installedImageTypes);
        return AnswerSheet(run,
                           Json{{"path", path},
                                {"version", version},
                                {"versionNumber", agent.versionNumber},
                                {"updateAvailable", agent.updateAvailable},
                                {"imageType", Coded(agent.imageType, imageType)},
                                {"iSCSIStatus", agent.iscsiStatus},
                                {"installedImageTypes", agent.installedImageTypes},
                                {"iSCSI", Coded(place)},
                                {"installedImages", ImageNamesJson(images)}},
                           Sheet()
                               .Add("Adapter", adapter.Called())
                               .Add("Version", version)
                               .Add("Update available", YesOrNo(agent.updateAvailable))
                               .Add("Image in flash", imageType)
                               .Add("Installed images", ImageNames(images))
                               .Add("iSCSI status", InWords(place))
                               .Add("Path", path));
    }
};

class ReadBootAgent final : public BootCommand {
  public:
    void Declare(Syntax& syntax) override {
        BootCommand::Declare(syntax);
        syntax.Argument("file", m_file, "The file that receives the contents of the flash memory");
    }

  private:
    ExitStatus RunForAgent(const ListedAdapter& adapter, const quillet::BootAgent& agent,
                           Invocation& run) override {
        if (!run.MayReplace(m_file)) {
            return ExitStatus::Done;
        }
        const std::vector<std::byte> flash =
            Attempt("read the flash memory", [&] { return run.Session().ReadFlash(agent.id); });
        run.BeginChanges({"write what the flash memory of " + adapter.Called() + " holds to " + m_file});
        ReplaceWholeFile(m_file, {reinterpret_cast<const char*>(flash.data()), flash.size()});
        if (run.WantsJson()) {
            run.Print(Json{{"file", m_file}, {"bytes", flash.size()}});
        } else {
            run.Out() << flash.size() << " bytes were written to " << Printable(m_file) << '\n';
        }
        return ExitStatus::Done;
    }

    std::string m_file;
};

} // namespace

void AddBootCommands(CommandTree& tree) {
    auto boot = tree.AddNoun("boot", "The boot agent of an adapter and its flash memory");
    boot.Query("show", "Show the boot agent", std::make_unique<ShowBootAgent>())
        .Query("read", "Read the flash memory into a file", std::make_unique<ReadBootAgent>());
    AddImageVerbs(boot);
    AddFlashWriting(boot);
}

} // namespace quilletctl
