#include "tools/Guides.h"

#include <CLI/CLI.hpp>

namespace {

// The groups or verbs that help shows.
std::vector<CLI::App const *> shownBelow(CLI::App const & app) {
    return app.get_subcommands([](CLI::App const * below) { return !below->get_group().empty(); });
}

std::string namesBelow(CLI::App const & app) {
    std::string names;
    for (CLI::App const * const below : shownBelow(app))
        names += below->get_name() + ' ';
    return names;
}

// As text of a manual page: nothing in it is a request, an escape or a hyphen to break at.
std::string roff(std::string const & text) {
    std::string escaped = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (char const character : text)
        escaped += character == '\\' ? "\\e" : character == '-' ? "\\-" : std::string(1, character);
    return escaped;
}

std::string paragraphs(std::string const & text) {
    std::istringstream lines(text);
    std::string page;
    for (std::string line; std::getline(lines, line);)
        page += roff(line) + '\n';
    return page;
}

// "FILE", "--json" or "--names FILE".
std::string optionText(CLI::Option const & option) {
    std::string const value = option.get_positional() ? "" : option.get_option_text();
    return option.get_name(option.get_positional(), true) + (value.empty() ? "" : ' ' + value);
}

std::string usageOf(CLI::App const & group, CLI::App const & verb) {
    std::string usage = group.get_name() + ' ' + verb.get_name() + " [OPTIONS]";
    for (CLI::Option const * const option :
         verb.get_options([](CLI::Option const * option) { return option->get_positional(); }))
        usage += ' ' + optionText(*option);
    return usage;
}

std::string verbSection(CLI::App const & group, CLI::App const & verb) {
    std::string page = ".SS \"" + roff(usageOf(group, verb)) + "\"\n" + roff(verb.get_description()) + ".\n";
    // That there is --help is said once, above.
    for (CLI::Option const * const option :
         verb.get_options([&verb](CLI::Option const * option) { return option != verb.get_help_ptr(); }))
        page += ".TP\n.B " + roff(optionText(*option)) + '\n' + roff(option->get_description()) + '\n';
    return page + ".PP\n" + paragraphs(verb.get_footer());
}

std::string optionNames(CLI::App const & verb) {
    std::string names;
    for (CLI::Option const * const option :
         verb.get_options([](CLI::Option const * option) { return option->nonpositional(); }))
        for (std::string const & name : option->get_lnames())
            names += "--" + name + ' ';
    return names;
}

} // namespace

std::string ManualPage(CLI::App const & app) {
    std::string const name = app.get_name();
    std::string page = ".TH CROSSTOOL 1 \"\" CrossUtil\n.SH NAME\n" + name +
                       " \\- work with the files of the library\n.SH SYNOPSIS\n.B " + name +
                       "\n.I GROUP VERB\n[OPTIONS] [FILE ...]\n.SH DESCRIPTION\n" +
                       paragraphs(app.get_description() + '\n' + app.get_footer());
    for (CLI::App const * const group : shownBelow(app)) {
        page += ".SH \"" + roff(group->get_name() + ": " + group->get_description()) + "\"\n";
        for (CLI::App const * const verb : shownBelow(*group))
            page += verbSection(*group, *verb);
    }
    return page;
}

std::string BashCompletion(CLI::App const & app) {
    std::string verbs, options;
    for (CLI::App const * const group : shownBelow(app)) {
        verbs += "        " + group->get_name() + ") words='" + namesBelow(*group) + "--help' ;;\n";
        for (CLI::App const * const verb : shownBelow(*group))
            options += "        '" + group->get_name() + ' ' + verb->get_name() + "') words='" +
                       optionNames(*verb) + "' ;;\n";
    }
    return "# Completion of crosstool, which has made this file.\n"
           "_crosstool() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} words=\n"
           "    if ((COMP_CWORD == 1)); then\n"
           "        words='" +
           namesBelow(app) +
           "--help'\n"
           "    elif ((COMP_CWORD == 2)); then\n"
           "        case ${COMP_WORDS[1]} in\n" +
           verbs +
           "        esac\n"
           "    elif [[ $current == -* ]]; then\n"
           "        case \"${COMP_WORDS[1]} ${COMP_WORDS[2]}\" in\n" +
           options +
           "        esac\n"
           "    fi\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "}\n"
           "complete -o default -F _crosstool crosstool\n"; // nothing found: files
}
