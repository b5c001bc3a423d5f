// quilletctl boot write: an image file into the flash memory, and back to compare.
#include "changes/ClientSet.h"
#include "commands/boot/BootCommand.h"
#include "commands/boot/BootVerbs.h"
#include "commands/boot/ImageFile.h"
#include "terminal/Progress.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <optional>

namespace quilletctl {

namespace {

class WriteBootAgent final : public ChosenImagesCommand {
    ExitStatus RunForAgent(const ListedAdapter& adapter, const quillet::BootAgent& agent,
                           Invocation& run) override {
        quillet::Session& session = run.Session();
        const ImageFile file = ReadImageFile(session, agent, File());
        const std::vector<std::wstring> types = ChooseImages(file, Types());
        Writing writing;
        writing.verdict = VerifyImages(session, agent, file, types);
        if (!writing.verdict.IsGood()) {
            return End(run, types, writing);
        }
        if (!run.Confirm("Write " + ImageNames(types) + " into the flash memory of " + adapter.Called() +
                         "?")) {
            run.Out() << "nothing was written\n";
            return ExitStatus::Done;
        }
        ClientSet changes(run,
                          {"write " + ImageNames(types) + " into the flash memory of " + adapter.Called()});
        // Nothing stops it from here on, for what is half written may not start any more.
        run.Screen().err
            << "About to program the flash memory of " << Printable(adapter.Called())
            << ". Cut off half-way it may hold nothing that works, so this cannot be interrupted.\n"
            << std::flush;
        std::optional<Refusal> refusal;
        try {
            writing.verdict =
                Attempt("write the flash memory", [&] { return Program(run, agent, file, types); });
        } catch (const Refusal& refused) {
            writing.refusal = refused.Code();
            refusal = refused;
        }
        writing.restartNeeded = changes.Close();
        if (refusal) {
            run.FailAfterAnswer(*refusal);
        }
        // What is there now is the only proof of what was written.
        try {
            writing.isWritten = std::ranges::equal(
                Attempt("read the flash memory", [&] { return session.ReadFlash(agent.id); }), file.Bytes());
        } catch (const Refusal& unreadable) {
            run.FailAfterAnswer(unreadable);
            writing.isWritten.reset();
        }
        return End(run, types, writing);
    }

    /// How it went.
    struct Writing {
        quillet::FlashVerdict verdict;         ///< what the provider says of the image
        std::optional<HRESULT> refusal;        ///< of the call that writes
        std::optional<bool> isWritten = false; ///< nothing: it cannot be read back
        std::optional<bool> restartNeeded = false;
    };

    static quillet::FlashVerdict Program(Invocation& run, const quillet::BootAgent& agent,
                                         const ImageFile& file, const std::vector<std::wstring>& types) {
        std::optional<ProgressWhileBusy> progress;
        if (!run.WantsJson()) {
            progress.emplace(run.Screen(), "Writing the flash memory; do not switch off");
        }
        return run.Session().WriteFlash(agent.id, file.Bytes(), types);
    }

    static std::string Text(const Writing& writing) {
        if (!writing.verdict.IsGood()) {
            return "the flash memory is as it was; " + VerdictText(writing.verdict);
        }
        if (!writing.isWritten) {
            return std::string("the flash memory cannot be read back, so what it holds is not known; ") +
                   RestartText(writing.restartNeeded);
        }
        if (*writing.isWritten) {
            return std::string("the flash memory holds the image, byte for byte; ") +
                   RestartText(writing.restartNeeded);
        }
        return std::string(
                   "the flash memory does not hold what was written; write it again before a restart") +
               (writing.refusal ? ", unless it is as it was" : "");
    }

    ExitStatus End(Invocation& run, const std::vector<std::wstring>& types, const Writing& writing) const {
        const bool isGood = writing.verdict.IsGood();
        if (run.WantsJson()) {
            run.Print(Json{{"file", File()},
                           {"types", ImageNamesJson(types)},
                           {"code", writing.verdict.code},
                           {"text", VerdictText(writing.verdict)},
                           {"result", writing.refusal ? Json(DescribeResult(*writing.refusal)) : Json()},
                           {"written", writing.isWritten ? Json(*writing.isWritten && isGood) : Json()},
                           {"restartNeeded", RestartJson(writing.restartNeeded)}});
        } else {
            run.Out() << Text(writing) << '\n';
        }
        return isGood && writing.isWritten.value_or(false) ? ExitStatus::Done : ExitStatus::Findings;
    }
};

} // namespace

void AddFlashWriting(CommandTree::Noun& boot) {
    boot.Verb("write", "Write an image file into the flash memory, after checking it and asking",
              std::make_unique<WriteBootAgent>());
}

} // namespace quilletctl
