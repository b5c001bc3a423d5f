// quilletctl boot show, read: the boot agent of an adapter and its flash memory.
#include "app/Answers.h"
#include "commands/boot/BootCommand.h"
#include "commands/boot/BootVerbs.h"
#include "commands/boot/Flash.h"
#include "commands/Commands.h"
#include "files/Files.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

class ShowBootAgent final : public BootCommand {
    ExitStatus RunForAgent(const ListedAdapter& adapter, const CBootAgent& agent, Invocation& run) override {
        const std::string path = ToUtf8(agent.m_wsBootAgentID);
        const std::string version = ToUtf8(agent.m_wsVersion);
        const std::string imageType = ToUtf8(agent.m_wsFlashImageType);
        return AnswerSheet(run,
                           Json{{"path", path},
                                {"version", version},
                                {"versionNumber", agent.m_lVersionNumber},
                                {"updateAvailable", agent.m_bUpdateAvailable},
                                {"imageType", Coded(agent.m_lFlashImageType, imageType)},
                                {"iSCSIStatus", agent.m_lISCSIStatus},
                                {"installedImageTypes", agent.m_lInstalledFlashImageTypes}},
                           Sheet()
                               .Add("Adapter", adapter.Called())
                               .Add("Version", version)
                               .Add("Update available", YesOrNo(agent.m_bUpdateAvailable))
                               .Add("Image in flash", imageType)
                               .Add("Installed types", std::to_string(agent.m_lInstalledFlashImageTypes))
                               .Add("iSCSI status", std::to_string(agent.m_lISCSIStatus))
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
    ExitStatus RunForAgent(const ListedAdapter&, const CBootAgent& agent, Invocation& run) override {
        if (FileExists(m_file) && !run.Confirm("Overwrite " + m_file + "?")) {
            run.Out() << "nothing was written\n";
            return ExitStatus::Done;
        }
        CheckReplaceable(m_file); // reading takes a while
        const Flash flash = ReadFlash(run.Session(), agent);
        run.HoldInterrupts();
        ReplaceFile(m_file, flash.Text());
        if (run.WantsJson()) {
            run.Print(Json{{"file", m_file}, {"bytes", flash.size}});
        } else {
            run.Out() << flash.size << " bytes were written to " << Printable(m_file) << '\n';
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
