// quilletctl boot write: an image file into the flash memory, and back to compare.
#include "changes/ClientSet.h"
#include "commands/boot/BootCommand.h"
#include "commands/boot/BootVerbs.h"
#include "commands/boot/Flash.h"
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
    ExitStatus RunForAgent(const ListedAdapter& adapter, const CBootAgent& agent, Invocation& run) override {
        CQuillet& session = run.Session();
        ImageFile file = ReadImageFile(session, agent, File());
        CSettings types = ChooseImages(file, Types());
        const int verdict = file.code != 0 ? file.code : VerifyImages(session, agent, file, types);
        Writing writing;
        writing.code = verdict;
        if (verdict != 0) {
            return End(run, types, writing);
        }
        if (!run.Confirm("Write " + ImageNames(types) + " into the flash memory of " + adapter.Called() +
                         "?")) {
            run.Out() << "nothing was written\n";
            return ExitStatus::Done;
        }
        ClientSet changes(run);
        // Nothing stops it from here on, for what is half written may not start any more.
        run.Screen().err
            << "About to program the flash memory of " << Printable(adapter.Called())
            << ". Cut off half-way it may hold nothing that works, so this cannot be interrupted.\n"
            << std::flush;
        writing.result = Program(run, agent, file, types, writing.code);
        writing.restartNeeded = changes.Close();
        if (FAILED(writing.result)) {
            run.FailAfterAnswer({"write the flash memory", writing.result});
        }
        // What is there now is the only proof of what was written.
        try {
            const Flash flash = ReadFlash(session, agent);
            writing.isWritten = flash.size == file.bytes.size() &&
                                std::equal(file.bytes.begin(), file.bytes.end(), flash.bytes.get());
        } catch (const Refusal& unreadable) {
            run.FailAfterAnswer(unreadable);
            writing.isWritten.reset();
        }
        return End(run, types, writing);
    }

    /// How it went.
    struct Writing {
        int code = 0;                          ///< what the provider says of the image
        HRESULT result = S_OK;                 ///< of the call that writes
        std::optional<bool> isWritten = false; ///< nothing: it cannot be read back
        std::optional<bool> restartNeeded = false;
    };

    static HRESULT Program(Invocation& run, const CBootAgent& agent, ImageFile& file, CSettings& types,
                           int& code) {
        const auto write = [&] {
            return run.Session().WriteBootAgentFlash(agent.m_wsBootAgentID, file.Size(), file.bytes.data(),
                                                     types, code);
        };
        if (run.WantsJson()) {
            return write();
        }
        const ProgressWhileBusy progress(run.Screen(), "Writing the flash memory; do not switch off");
        return write();
    }

    static std::string Text(const Writing& writing) {
        if (writing.code != 0) {
            return "the flash memory is as it was; " + VerdictText(writing.code);
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
               (FAILED(writing.result) ? ", unless it is as it was" : "");
    }

    ExitStatus End(Invocation& run, const CSettings& types, const Writing& writing) const {
        if (run.WantsJson()) {
            run.Print(
                Json{{"file", File()},
                     {"types", ImageNamesJson(types)},
                     {"code", writing.code},
                     {"result", FAILED(writing.result) ? Json(DescribeResult(writing.result)) : Json()},
                     {"written", writing.isWritten ? Json(*writing.isWritten && writing.code == 0) : Json()},
                     {"restartNeeded", RestartJson(writing.restartNeeded)}});
        } else {
            run.Out() << Text(writing) << '\n';
        }
        return writing.code == 0 && writing.isWritten.value_or(false) ? ExitStatus::Done
                                                                      : ExitStatus::Findings;
    }
};

} // namespace

void AddFlashWriting(CommandTree::Noun& boot) {
    boot.Verb("write", "Write an image file into the flash memory, after checking it and asking",
              std::make_unique<WriteBootAgent>());
}

} // namespace quilletctl
