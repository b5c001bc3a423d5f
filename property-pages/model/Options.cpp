// The program's command line.
#include "model/Options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
#include <stdexcept>

namespace quillet::pages {

Options ReadOptions(std::vector<std::string> arguments) {
    Options options;
    CLI::App line("Property pages and wizards for network adapters, teams and VLANs", "quillet-properties");
    auto* simulate = line.add_option("--simulate", options.machineFile,
                                     "A simulated machine: of this file, or the built-in one");
    simulate->expected(0, 1)->type_name("[FILE]");
    line.add_option("--state", options.stateFile, "Keeps the simulated machine in this file")
        ->type_name("FILE");
    line.add_option("--machine", options.host, "Another machine, by its name or address")
        ->type_name("HOST")
        ->excludes(simulate)
        ->excludes(line.get_option("--state"));
    line.add_option("--adapter", options.adapter,
                    "The pages of one adapter, by its name or MAC address, alone")
        ->type_name("NAME");
    line.add_option("--language", options.language, "The language of the pages")
        ->type_name("en|de|fr")
        ->transform(CLI::CheckedTransformer(std::map<std::string, Language>{{"en", Language::English},
                                                                            {"de", Language::German},
                                                                            {"fr", Language::French}},
                                            CLI::ignore_case));
    std::ranges::reverse(arguments);
    try {
        line.parse(arguments);
    } catch (const CLI::CallForHelp&) {
        options.help = line.help();
    } catch (const CLI::ParseError& mistake) {
        throw std::runtime_error(mistake.what());
    }
    options.simulate = simulate->count() > 0 || !options.stateFile.empty();
    return options;
}

} // namespace quillet::pages
