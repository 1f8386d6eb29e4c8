// The command-line frame of tq-bacnet: the command table, argument reading and the failures
// that map to the tool's exit statuses.
#pragma once

#include <functional>
#include <map>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace TQ {
namespace Apps {

/// Exit statuses: what a script calling the tool can rely on.
enum ExitStatus { EXIT_OK = 0, EXIT_FAILED = 1, EXIT_USAGE = 2, EXIT_TIMEOUT = 3 };

/// Bad usage: unknown command or option, missing or surplus arguments (exit 2).
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};
/// Bad input or a BACnet error, reject or abort from the device (exit 1).
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};
/// The device did not answer in time (exit 3).
struct TimeoutError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// One option a command accepts: `--name VALUE` when `valueName` is set, else a flag.
struct OptionInfo {
    std::string name;
    std::string valueName;
    std::string help;
};

/// The arguments of one command: positionals in order, options by name.
class Args {
public:
    /// Reads `argv` against the options a command accepts; "--" ends the options.
    Args(const std::vector<std::string>& argv, const std::vector<OptionInfo>& accepted);

    const std::vector<std::string>& positionals() const { return _positionals; }
    bool has(const std::string& option) const { return _options.count(option) != 0; }
    std::string get(const std::string& option, const std::string& fallback = "") const;
    /// A whole number within [low, high]; UsageError naming the option otherwise.
    long getNumber(const std::string& option, long fallback, long low, long high) const;
    /// Between `low` and `high` positionals, or UsageError.
    void expectPositionals(size_t low, size_t high) const;

private:
    std::vector<std::string> _positionals;
    std::map<std::string, std::string> _options;
};

/// A whole number in [low, high] from text; UsageError naming `what` otherwise.
long parseNumber(const std::string& text, long low, long high, const std::string& what);

/// One subcommand: its name, what it does, its synopsis, options and an example.
struct Command {
    std::string name;
    std::string summary;
    std::string synopsis;
    std::vector<OptionInfo> options;
    std::string example;
    std::function<int(const Args&, std::ostream&)> run;
};

/// Every command of the tool, in the order help lists them.
const std::vector<Command>& commands();
/// The options every command accepts (database, output format).
const std::vector<OptionInfo>& commonOptions();
/// The options of the network commands.
const std::vector<OptionInfo>& networkOptions();

void printToolHelp(std::ostream& out);
void printCommandHelp(const Command& command, std::ostream& out);
/// The bash completion script, made from the command table.
void printBashCompletion(std::ostream& out);

}  // namespace Apps
}  // namespace TQ
