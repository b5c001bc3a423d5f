// quilletctl trace: where the library writes its trace, and what a connection leaves there.
#include "commands/Commands.h"
#include "files/TraceFile.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

/// The library begins its file anew in every process, so the lines of an earlier command are gone. What can
/// be shown is a connection of this command's own.
class TraceCommand final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Number("--lines", m_lines, 1, 100000, "How many of the last lines to print");
    }

    ExitStatus Run(Invocation& run) override {
        std::optional<Refusal> refusal;
        try {
            run.Session();
        } catch (const Refusal& refused) {
            // The trace says more about a failed connection than its code, so it is printed all the same.
            refusal = refused;
        }
        run.Disconnect();

        const std::optional<TraceFile> trace = ReadTraceFile(m_lines);
        if (run.WantsJson()) {
            run.Print(AsJson(trace));
        } else if (!trace) {
            run.Out() << "no trace is written\n";
        } else {
            run.Out() << "trace file: " << Printable(NameOf(*trace)) << '\n';
            for (const std::string& line : trace->lines) {
                run.Out() << PrintableColumns(line) << '\n';
            }
        }
        if (refusal) {
            throw Refusal(*refusal);
        }
        return ExitStatus::Done;
    }

  private:
    static std::string NameOf(const TraceFile& trace) {
        const std::u8string name = trace.path.u8string();
        return {name.begin(), name.end()};
    }

    static Json AsJson(const std::optional<TraceFile>& trace) {
        return trace ? Json{{"file", NameOf(*trace)}, {"lines", trace->lines}}
                     : Json{{"file", nullptr}, {"lines", Json::array()}};
    }

    /// The line with its tabs, which separate process, time and text, kept as blanks.
    static std::string PrintableColumns(std::string line) {
        std::replace(line.begin(), line.end(), '\t', ' ');
        return Printable(line);
    }

    std::uint32_t m_lines = 10;
};

} // namespace

void AddTraceCommand(CommandTree& tree) {
    tree.AddCommand("trace", "Connect, disconnect, and print the last lines of the library's trace file",
                    CommandTree::Group::Diagnostics, std::make_unique<TraceCommand>());
}

} // namespace quilletctl
