// The groups of commands that make up the tool's command table.
#pragma once

#include "Cli.h"

#include <vector>

namespace TQ {
namespace Apps {

std::vector<Command> offlineCommands();

}  // namespace Apps
}  // namespace TQ
