#include "app/Answers.h"

namespace quilletctl {

ExitStatus AnswerList(Invocation& run, const Json& answer, const Table& table, const char* none) {
    if (run.WantsJson()) {
        run.Print(answer);
    } else if (table.IsEmpty()) {
        run.Out() << none << '\n';
    } else {
        table.Print(run.Screen());
    }
    return ExitStatus::Done;
}

ExitStatus AnswerSheet(Invocation& run, const Json& answer, const Sheet& sheet) {
    if (run.WantsJson()) {
        run.Print(answer);
    } else {
        sheet.Print(run.Screen());
    }
    return ExitStatus::Done;
}

} // namespace quilletctl
