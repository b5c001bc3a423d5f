#include "app/Answers.h"

namespace quilletctl {

ExitStatus AnswerSheet(Invocation& run, const Json& answer, const Sheet& sheet) {
    if (run.WantsJson()) {
        run.Print(answer);
    } else {
        sheet.Print(run.Screen());
    }
    return ExitStatus::Done;
}

} // namespace quilletctl
