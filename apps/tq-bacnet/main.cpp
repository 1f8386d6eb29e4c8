// tq-bacnet: the catalogue, values rendered as BACnet/WS shows them, and the devices of a
// BACnet/IP network, in one command-line tool.
#include "Cli.h"
#include "Commands.h"

#include <Poco/Exception.h>

#include <algorithm>
#include <iostream>
#include <sstream>

using namespace TQ::Apps;

namespace TQ {
namespace Apps {

const std::vector<OptionInfo>& commonOptions() {
    static const std::vector<OptionInfo> options = {
        {"db", "PATH", "catalogue database (default " + std::string("$TQ_BACNET_DB or ~/.local/share/tq-bacnet/tq_bacnet.db") + ")"},
        {"help", "", "this help"},
    };
    return options;
}

const std::vector<Command>& commands() {
    static const std::vector<Command> table = [] {
        std::vector<Command> all;
        for (Command& command : offlineCommands()) all.push_back(std::move(command));
        for (Command& command : catalogueCommands()) all.push_back(std::move(command));
        for (Command& command : networkCommands()) all.push_back(std::move(command));
        for (Command& command : all) {
            command.options.insert(command.options.end(), commonOptions().begin(), commonOptions().end());
        }
        all.push_back({"completion", "prints the shell completion script", "bash", {}, 
                       "source <(tq-bacnet completion bash)",
                       [](const Args& args, std::ostream& out) {
                           args.expectPositionals(1, 1);
                           if (args.positionals()[0] != "bash") throw UsageError("only bash completion is made");
                           printBashCompletion(out);
                           return int(EXIT_OK);
                       }});
        return all;
    }();
    return table;
}

}  // namespace Apps
}  // namespace TQ

namespace {

int fail(const std::string& command, const std::string& message, int status) {
    std::cerr << "tq-bacnet" << (command.empty() ? "" : " " + command) << ": " << message << "\n";
    if (status == EXIT_USAGE) {
        std::cerr << "try 'tq-bacnet " << (command.empty() ? "" : command + " ") << "--help'\n";
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.empty()) {
        std::cerr << "usage: tq-bacnet COMMAND [ARGUMENTS] [OPTIONS]\n'tq-bacnet --help' lists the commands\n";
        return EXIT_USAGE;
    }
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
        printToolHelp(std::cout);
        return EXIT_OK;
    }
    const auto& table = commands();
    auto command = std::find_if(table.begin(), table.end(),
                                [&words](const Command& candidate) { return candidate.name == words[0]; });
    if (command == table.end()) return fail("", "unknown command \"" + words[0] + "\"", EXIT_USAGE);
    // Output is gathered first so that a failure half-way leaves nothing partial on stdout.
    std::ostringstream out;
    try {
        const Args args(std::vector<std::string>(words.begin() + 1, words.end()), command->options);
        if (args.has("help")) {
            printCommandHelp(*command, std::cout);
            return EXIT_OK;
        }
        const int status = command->run(args, out);
        std::cout << out.str() << std::flush;
        return status;
    } catch (const UsageError& error) {
        return fail(command->name, error.what(), EXIT_USAGE);
    } catch (const InputError& error) {
        return fail(command->name, error.what(), EXIT_FAILED);
    } catch (const TimeoutError& error) {
        return fail(command->name, error.what(), EXIT_TIMEOUT);
    } catch (const Poco::Exception& error) {
        return fail(command->name, error.displayText(), EXIT_FAILED);
    } catch (const std::exception& error) {
        return fail(command->name, error.what(), EXIT_FAILED);
    }
}
