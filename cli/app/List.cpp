// Choosing columns, sorting, and lines for scripts.
#include "app/List.h"

#include "ending/Failure.h"
#include "texts/Nearest.h"
#include "texts/Text.h"

#include <algorithm>
#include <utility>

namespace quilletctl {

namespace {

/// "OBJECT ID" on the command line: "object-id".
std::string WordFor(const std::string& title) {
    std::string word;
    for (const char letter : title) {
        word += letter == ' '                    ? '-'
                : letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A'))
                                                 : letter;
    }
    return word;
}

std::vector<std::string> WordsOf(const std::string& text) {
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(',', begin);
        pieces.push_back(text.substr(begin, end == std::string::npos ? end : end - begin));
    }
    return pieces;
}

/// The cell as scripts read it: nothing is cut, and what parts the fields stands in none.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        escaped += letter == ':' || letter == '\\' ? std::string{'\\', letter} : std::string{letter};
    }
    return escaped;
}

bool IsDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

/// The digits at the front, without zeros that change nothing; they are taken away.
std::string_view TakeNumber(std::string_view& text) {
    const std::size_t zeros = std::min(text.find_first_not_of('0'), text.size());
    text.remove_prefix(zeros);
    const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
    const std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(digits.size());
    return digits;
}

/// Whether a text comes before another as people sort: numbers within them as numbers, case does not count.
bool TextComesBefore(std::string_view left, std::string_view right) {
    const auto fold = [](char letter) {
        return static_cast<unsigned char>(letter >= 'A' && letter <= 'Z' ? letter + ('a' - 'A') : letter);
    };
    while (!left.empty() && !right.empty()) {
        if (IsDigit(left.front()) && IsDigit(right.front())) {
            const std::string_view a = TakeNumber(left);
            const std::string_view b = TakeNumber(right);
            if (a != b) {
                return a.size() != b.size() ? a.size() < b.size() : a < b;
            }
        } else {
            if (fold(left.front()) != fold(right.front())) {
                return fold(left.front()) < fold(right.front());
            }
            left.remove_prefix(1);
            right.remove_prefix(1);
        }
    }
    return left.empty() && !right.empty();
}

bool ComesBefore(const Cell& left, const Cell& right) {
    return left.number && right.number ? *left.number < *right.number
                                       : TextComesBefore(left.Text(), right.Text());
}

/// Whether there is nothing to sort by.
bool IsMissing(const Cell& cell) {
    return !cell.number && cell.Text().empty();
}

} // namespace

void ListOptions::Declare(Syntax& syntax) {
    syntax.Text(
        "--columns",
        [this](const std::string& words) {
            m_chosen.clear();
            for (const std::string& word : WordsOf(words)) {
                m_chosen.push_back(Find(word));
            }
        },
        "COLUMN,...", "Show these columns: " + ListOf(Words()), Words());
    syntax.Text(
        "--sort",
        [this](const std::string& word) {
            const bool isDescending = word.starts_with('-');
            m_order = {Find(word.substr(isDescending ? 1 : 0)), isDescending};
        },
        "COLUMN", "Sort by a column; -COLUMN sorts the other way round", Words());
    syntax.Flag("--terse", m_isTerse,
                "For scripts: fields separated by ':', in them '\\:' and '\\\\'; no headings, nothing cut");
    syntax.Flag("--no-headings", m_isWithoutHeadings, "Leave the headings out");
}

std::vector<std::string> ListOptions::Words() const {
    std::vector<std::string> words;
    words.reserve(m_columns.size());
    for (const Column& column : m_columns) {
        words.push_back(WordFor(column.title));
    }
    return words;
}

std::size_t ListOptions::Find(const std::string& word) const {
    const std::vector<std::string> words = Words();
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end()) {
        std::string known;
        for (const std::string& each : words) {
            known += (known.empty() ? "" : ", ") + each;
        }
        throw UsageError("there is no column \"" + word + "\", only " + known + DidYouMean(word, words));
    }
    return static_cast<std::size_t>(found - words.begin());
}

void List::AddRow(std::vector<Cell> cells, Json entry) {
    cells.resize(m_options.m_columns.size(), Cell(""));
    m_rows.push_back({std::move(cells), std::move(entry), m_groups.size()});
}

void List::LeaveOut(std::string_view title) {
    m_leftOut.push_back(title);
}

void List::Sort() {
    if (!m_options.m_order) {
        return;
    }
    const auto [column, isDescending] = *m_options.m_order;
    std::stable_sort(m_rows.begin(), m_rows.end(),
                     [&, at = column, down = isDescending](const Row& a, const Row& b) {
                         if (a.group != b.group) {
                             return a.group < b.group;
                         }
                         const Cell& left = a.cells[at];
                         const Cell& right = b.cells[at];
                         // What is missing comes last, whichever way round.
                         if (IsMissing(left) || IsMissing(right)) {
                             return !IsMissing(left);
                         }
                         return down ? ComesBefore(right, left) : ComesBefore(left, right);
                     });
}

std::vector<std::size_t> List::Shown() const {
    if (!m_options.m_chosen.empty()) {
        return m_options.m_chosen;
    }
    std::vector<std::size_t> shown;
    for (std::size_t i = 0; i < m_options.m_columns.size(); ++i) {
        // Scripts count the fields.
        if (m_options.m_isTerse ||
            std::find(m_leftOut.begin(), m_leftOut.end(), m_options.m_columns[i].title) == m_leftOut.end()) {
            shown.push_back(i);
        }
    }
    return shown;
}

void List::PrintLines(std::ostream& out) const {
    const std::vector<std::size_t> shown = Shown();
    for (const Row& row : m_rows) {
        const char* separator = "";
        for (const std::size_t column : shown) {
            out << separator << Escaped(Printable(row.cells[column].Text()));
            separator = ":";
        }
        out << '\n';
    }
}

void List::PrintTable(const Terminal& screen) const {
    const char* separator = "";
    for (std::size_t group = 0; group <= m_groups.size(); ++group) {
        if (std::none_of(m_rows.begin(), m_rows.end(), [&](const Row& row) { return row.group == group; })) {
            continue;
        }
        if (group > 0 && !m_options.m_isWithoutHeadings) {
            const std::string heading = Printable(m_groups[group - 1]) + ':';
            screen.out << separator << (screen.outColour ? "\x1b[1m" + heading + "\x1b[0m" : heading) << '\n';
            separator = "\n";
        }
        PrintTable(screen, group);
    }
}

void List::PrintTable(const Terminal& screen, std::size_t group) const {
    const std::vector<std::size_t> shown = Shown();
    std::vector<Column> columns;
    for (const std::size_t column : shown) {
        columns.push_back(m_options.m_columns[column]);
        // What was asked for by name stays.
        if (!m_options.m_chosen.empty()) {
            columns.back().repeats.clear();
            columns.back().stay = Stay::Always;
        }
    }
    Table table(std::move(columns));
    for (const Row& row : m_rows) {
        if (row.group != group) {
            continue;
        }
        std::vector<Cell> cells;
        for (const std::size_t column : shown) {
            cells.push_back(row.cells[column]);
            if (!m_options.m_chosen.empty()) {
                cells.back().brief.clear();
            }
            if (IsMissing(cells.back())) {
                cells.back().lines = {"-"};
            }
        }
        table.AddRow(cells);
    }
    table.Print(screen, !m_options.m_isWithoutHeadings);
}

ExitStatus List::Answer(Invocation& run, const std::function<Json(Json entries)>& answer, const char* none) {
    Sort();
    if (run.WantsJson()) {
        Json entries = Json::array();
        for (Row& row : m_rows) {
            entries.push_back(std::move(row.entry));
        }
        run.Print(answer(std::move(entries)));
    } else if (m_options.m_isTerse) {
        PrintLines(run.Out());
    } else if (!m_rows.empty()) {
        PrintTable(run.Screen());
    } else if (!m_options.m_isWithoutHeadings) {
        run.Out() << none << '\n';
    }
    return ExitStatus::Done;
}

std::function<Json(Json entries)> Under(const char* key) {
    return [key](Json entries) {
        Json answer;
        answer[key] = std::move(entries);
        return answer;
    };
}

} // namespace quilletctl
