#include "Cli.h"

#include <Poco/NumberParser.h>

#include <algorithm>

namespace TQ {
namespace Apps {

namespace {

const OptionInfo* findOption(const std::vector<OptionInfo>& accepted, const std::string& name) {
    auto it = std::find_if(accepted.begin(), accepted.end(),
                           [&name](const OptionInfo& option) { return option.name == name; });
    return it == accepted.end() ? nullptr : &*it;
}

void printOptions(const std::vector<OptionInfo>& options, std::ostream& out) {
    for (const OptionInfo& option : options) {
        std::string left = "  --" + option.name + (option.valueName.empty() ? "" : " " + option.valueName);
        out << left << std::string(left.size() < 28 ? 28 - left.size() : 1, ' ') << option.help << "\n";
    }
}

}  // namespace

Args::Args(const std::vector<std::string>& argv, const std::vector<OptionInfo>& accepted) {
    bool optionsEnded = false;
    for (size_t i = 0; i < argv.size(); ++i) {
        const std::string& word = argv[i];
        if (optionsEnded || word.size() < 3 || word.compare(0, 2, "--") != 0) {
            if (word == "--") {
                optionsEnded = true;
                continue;
            }
            _positionals.push_back(word);
            continue;
        }
        std::string name = word.substr(2);
        std::string value;
        const size_t equals = name.find('=');
        const bool inlineValue = equals != std::string::npos;
        if (inlineValue) {
            value = name.substr(equals + 1);
            name.erase(equals);
        }
        const OptionInfo* option = findOption(accepted, name);
        if (option == nullptr) throw UsageError("unknown option --" + name);
        if (option->valueName.empty()) {
            if (inlineValue) throw UsageError("option --" + name + " takes no value");
        } else if (!inlineValue) {
            if (i + 1 >= argv.size()) throw UsageError("option --" + name + " needs " + option->valueName);
            value = argv[++i];
        }
        _options[name] = value;
    }
}

std::string Args::get(const std::string& option, const std::string& fallback) const {
    auto it = _options.find(option);
    return it == _options.end() ? fallback : it->second;
}

long parseNumber(const std::string& text, long low, long high, const std::string& what) {
    Poco::Int64 number = 0;
    const bool digits = !text.empty() && std::all_of(text.begin() + (text[0] == '-' ? 1 : 0), text.end(),
                                                     [](char c) { return c >= '0' && c <= '9'; });
    if (!digits || !Poco::NumberParser::tryParse64(text, number) || number < low || number > high) {
        throw UsageError(what + " must be a whole number from " + std::to_string(low) + " to " +
                         std::to_string(high) + ", not \"" + text + "\"");
    }
    return static_cast<long>(number);
}

long Args::getNumber(const std::string& option, long fallback, long low, long high) const {
    return has(option) ? parseNumber(get(option), low, high, "--" + option) : fallback;
}

void Args::expectPositionals(size_t low, size_t high) const {
    if (_positionals.size() < low) throw UsageError("missing arguments");
    if (_positionals.size() > high) throw UsageError("unexpected argument \"" + _positionals[high] + "\"");
}

void printToolHelp(std::ostream& out) {
    out << "usage: tq-bacnet COMMAND [ARGUMENTS] [OPTIONS]\n\n"
           "BACnet at the command line: the catalogue, values rendered as BACnet/WS shows them,\n"
           "and the devices of a BACnet/IP network.\n\ncommands:\n";
    for (const Command& command : commands()) {
        out << "  " << command.name << std::string(command.name.size() < 12 ? 12 - command.name.size() : 1, ' ')
            << command.summary << "\n";
    }
    out << "\noptions of every command:\n";
    printOptions(commonOptions(), out);
    out << "\n'tq-bacnet COMMAND --help' tells more of one command.\n"
           "exit status: 0 done, 1 bad input or a BACnet error, 2 bad usage, 3 timeout\n";
}

void printCommandHelp(const Command& command, std::ostream& out) {
    out << "usage: tq-bacnet " << command.name << (command.synopsis.empty() ? "" : " " + command.synopsis)
        << "\n\n"
        << command.summary << "\n";
    if (!command.options.empty()) {
        out << "\noptions:\n";
        printOptions(command.options, out);
    }
    out << "\nexample:\n  " << command.example << "\n";
}

void printBashCompletion(std::ostream& out) {
    out << "# bash completion for tq-bacnet: source it, or install it as\n"
           "# /usr/share/bash-completion/completions/tq-bacnet\n"
           "_tq_bacnet() {\n"
           "  local cur=${COMP_WORDS[COMP_CWORD]}\n"
           "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
           "    COMPREPLY=($(compgen -W \"";
    for (const Command& command : commands()) out << command.name << " ";
    out << "--help\" -- \"$cur\"))\n"
           "    return\n"
           "  fi\n"
           "  case ${COMP_WORDS[1]} in\n";
    for (const Command& command : commands()) {
        out << "    " << command.name << ") COMPREPLY=($(compgen -W \"--help";
        for (const OptionInfo& option : command.options) out << " --" << option.name;
        out << "\" -- \"$cur\")) ;;\n";
    }
    out << "  esac\n"
           "}\n"
           "complete -o default -F _tq_bacnet tq-bacnet\n";
}

}  // namespace Apps
}  // namespace TQ
