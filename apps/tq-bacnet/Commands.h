// The groups of commands that make up the tool's command table.
#pragma once

#include "Cli.h"

#include <vector>

namespace TQ {
namespace Apps {

std::vector<Command> offlineCommands();
std::vector<Command> catalogueCommands();
std::vector<Command> networkCommands();

}  // namespace Apps
}  // namespace TQ
