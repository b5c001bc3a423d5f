// Answering the shells.
#include "completion/Complete.h"

#include "app/Invocation.h"
#include "app/SimulatedMachine.h"
#include "completion/BashLine.h"
#include "completion/CompletedLine.h"
#include "completion/MachineNames.h"
#include "terminal/Console.h"
#include "texts/Number.h"
#include "texts/Text.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <thread>

namespace quilletctl {

namespace {

/// What the scripts ask.
struct Question {
    std::vector<std::string> words;
    std::string current;
    std::optional<BashLine> bash;
    std::optional<std::uint32_t> milliseconds;
};

Question QuestionIn(const std::vector<std::string>& arguments) {
    Question question;
    std::string breaks;
    std::optional<std::string> line;
    std::size_t i = 0;
    const auto take = [&](std::string_view option, auto&& use) {
        const bool is = i < arguments.size() && arguments[i].starts_with(option);
        if (is) {
            use(arguments[i++].substr(option.size()));
        }
    };
    take("--within=",
         [&](const std::string& text) { question.milliseconds = NumberIn<std::uint32_t>(text); });
    take("--breaks=", [&](const std::string& text) { breaks = text; });
    take("--line=", [&](const std::string& text) { line = text; });
    take("--current=", [&](const std::string& text) { question.current = text; });
    question.words.assign(arguments.begin() + static_cast<std::ptrdiff_t>(i), arguments.end());
    if (line) {
        question.bash.emplace(*line, breaks);
        question.words = question.bash->Words();
        question.current = question.bash->Current();
    }
    return question;
}

/// Whoever types does not wait. The process has nothing to lose: it changes nothing.
void EndAfter(std::chrono::milliseconds time) {
    std::thread([time] {
        std::this_thread::sleep_for(time);
        std::_Exit(0);
    }).detach();
}

/// Those that begin as what is there; where none does, those that do in another case.
std::vector<Proposal> Fitting(const std::vector<Proposal>& proposals, const std::string& current) {
    std::vector<Proposal> fitting;
    const auto take = [&](auto fits) {
        if (fitting.empty()) {
            std::copy_if(proposals.begin(), proposals.end(), std::back_inserter(fitting), fits);
        }
    };
    take([&](const Proposal& each) { return each.word.starts_with(current); });
    take(
        [&](const Proposal& each) { return SameIgnoringCase(each.word.substr(0, current.size()), current); });
    return fitting;
}

void Tell(const std::vector<Proposal>& proposals, const Question& question, std::ostream& out) {
    std::ostringstream lines; // written at once, or not at all
    if (question.bash) {
        for (const Proposal& each : Fitting(proposals, question.current)) {
            lines << question.bash->Completed(each.word) << '\n';
        }
    } else {
        for (const Proposal& each : proposals) {
            lines << each.word << '\t' << each.description << '\n';
        }
    }
    out << lines.str() << std::flush;
}

std::vector<Proposal> AskMachine(const CompletedLine& line) {
    std::ostringstream unheard;
    Terminal silent{unheard, unheard};
    try {
        CommandTree tree; // with a command that needs nothing
        tree.AddCommand("names", "", CommandTree::Group::Diagnostics,
                        [](Invocation&) { return ExitStatus::Done; });
        std::vector<std::string> words = line.MachineOptions();
        words.emplace_back("names");
        tree.Parse(words);
        const GlobalOptions& options = tree.Options();
        if (!options.machine.empty() && !HostHasWmi() && !AsksForSimulator(options)) {
            return {};
        }
        Invocation run(options, silent, false);
        return NamesOfMachine(run.Session(), line);
    } catch (const std::exception&) {
        return {}; // whoever types hears of it when the command runs
    } catch (const TextRequest&) {
        return {};
    }
}

} // namespace

ExitStatus Complete(CommandTree& tree, const std::vector<std::string>& arguments, Terminal& terminal) {
    const Question question = QuestionIn(arguments);
    if (question.milliseconds) {
        EndAfter(std::chrono::milliseconds(*question.milliseconds));
    }
    const CompletedLine line(tree.Description(), question.words, question.current);
    terminal.out << (line.MayBeFile() ? "files\n" : "\n");
    Tell(line.Words(), question, terminal.out);
    if (line.FromMachine() != MachineWord::None) {
        Tell(AskMachine(line), question, terminal.out);
    }
    return ExitStatus::Done;
}

} // namespace quilletctl
