// quilletctl boot: the boot agent of an adapter and its flash memory.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "files/Files.h"
#include "terminal/Progress.h"
#include "texts/JsonParts.h"
#include "texts/ResultCodes.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <memory>

namespace quilletctl {

namespace {

struct ReleaseBytes {
    void operator()(unsigned char* bytes) const { ::operator delete(bytes); }
};

/// The contents of a flash memory.
struct Flash {
    std::unique_ptr<unsigned char, ReleaseBytes> bytes;
    std::size_t size = 0;

    std::string_view Text() const { return {reinterpret_cast<const char*>(bytes.get()), size}; }
};

Flash ReadFlash(CQuillet& session, const CBootAgent& agent) {
    LONG size = 0;
    unsigned char* data = nullptr;
    const HRESULT result = session.ReadBootAgentFlash(agent.m_wsBootAgentID, size, &data);
    Flash flash{std::unique_ptr<unsigned char, ReleaseBytes>(data), static_cast<std::size_t>(size)};
    ThrowIfRefused(result, "read the flash memory");
    return flash;
}

/// An image file and what the provider finds in it.
struct ImageFile {
    std::vector<std::uint8_t> bytes;
    CSettings images;
    int code = 0;

    LONG Size() const { return static_cast<LONG>(bytes.size()); }
};

ImageFile Inspect(CQuillet& session, const CBootAgent& agent, const std::string& name) {
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

/// The images of the file that are asked for; all of them when none is named.
CSettings Choose(const ImageFile& file, const std::vector<std::string>& names) {
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

int Verify(CQuillet& session, const CBootAgent& agent, ImageFile& file, CSettings& types) {
    int code = 0;
    ThrowIfRefused(
        session.VerifyImageType(agent.m_wsBootAgentID, file.Size(), file.bytes.data(), types, code),
        "check the image file");
    return code;
}

std::string Names(const CSettings& types) {
    std::string names;
    for (const CSetting* type : types.m_vecItems) {
        names += (names.empty() ? "" : ", ") + ToUtf8(type->m_wsCaption);
    }
    return names.empty() ? "no image" : names;
}

Json NamesAsJson(const CSettings& types) {
    Json names = Json::array();
    for (const CSetting* type : types.m_vecItems) {
        names.push_back(ToUtf8(type->m_wsCaption));
    }
    return names;
}

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

std::string VerdictText(int code) {
    if (code == 0) {
        return "the image file is right";
    }
    // All that is known of the provider's codes.
    const bool isReadable = (code & 1) == 0;
    return "the image file is refused: " + std::string(isReadable ? "" : "it cannot be read: ") + "code " +
           std::to_string(code);
}

/// A command about the boot agent of one adapter.
class BootCommand : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) final {
        CBootAgent agent;
        ThrowIfRefused(run.Session().GetAdapterBootAgentInfo(ToWide(adapter.path), agent),
                       "read the boot agent of " + adapter.Called());
        return RunForAgent(adapter, agent, run);
    }

    virtual ExitStatus RunForAgent(const ListedAdapter& adapter, const CBootAgent& agent,
                                   Invocation& run) = 0;
};

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

class InspectImageFile final : public BootCommand {
  public:
    void Declare(Syntax& syntax) override {
        BootCommand::Declare(syntax);
        syntax.Argument("file", m_file, "The image file");
    }

  private:
    ExitStatus RunForAgent(const ListedAdapter&, const CBootAgent& agent, Invocation& run) override {
        const ImageFile file = Inspect(run.Session(), agent, m_file);
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

/// A command about an image file and the images of it that are wanted.
class ChosenImagesCommand : public BootCommand {
  public:
    void Declare(Syntax& syntax) override {
        BootCommand::Declare(syntax);
        syntax.Argument("file", m_file, "The image file");
        syntax.Texts("--type", m_types, "TYPE", "An image of the file, by its type (default: all of them)");
    }

  protected:
    const std::string& File() const noexcept { return m_file; }
    const std::vector<std::string>& Types() const noexcept { return m_types; }

  private:
    std::string m_file;
    std::vector<std::string> m_types;
};

class VerifyImageFile final : public ChosenImagesCommand {
    ExitStatus RunForAgent(const ListedAdapter&, const CBootAgent& agent, Invocation& run) override {
        ImageFile file = Inspect(run.Session(), agent, File());
        CSettings types = Choose(file, Types());
        const int code = file.code != 0 ? file.code : Verify(run.Session(), agent, file, types);
        if (run.WantsJson()) {
            run.Print(Json{{"file", File()}, {"code", code}, {"types", NamesAsJson(types)}});
        } else {
            run.Out() << VerdictText(code) << '\n';
        }
        return code == 0 ? ExitStatus::Done : ExitStatus::Findings;
    }
};

class WriteBootAgent final : public ChosenImagesCommand {
    ExitStatus RunForAgent(const ListedAdapter& adapter, const CBootAgent& agent, Invocation& run) override {
        CQuillet& session = run.Session();
        ImageFile file = Inspect(session, agent, File());
        CSettings types = Choose(file, Types());
        const int verdict = file.code != 0 ? file.code : Verify(session, agent, file, types);
        Writing writing;
        writing.code = verdict;
        if (verdict != 0) {
            return End(run, types, writing);
        }
        if (!run.Confirm("Write " + Names(types) + " into the flash memory of " + adapter.Called() + "?")) {
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
                     {"types", NamesAsJson(types)},
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

void AddBootCommands(CommandTree& tree) {
    tree.AddNoun("boot", "The boot agent of an adapter and its flash memory")
        .Query("show", "Show the boot agent", std::make_unique<ShowBootAgent>())
        .Query("read", "Read the flash memory into a file", std::make_unique<ReadBootAgent>())
        .Query("inspect", "List the images in an image file", std::make_unique<InspectImageFile>())
        .Query("verify", "Check an image file", std::make_unique<VerifyImageFile>())
        .Verb("write", "Write an image file into the flash memory, after checking it and asking",
              std::make_unique<WriteBootAgent>());
}

} // namespace quilletctl
