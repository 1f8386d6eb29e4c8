// Runs a program as a user would and keeps what it printed and how it ended.
#pragma once

#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <Poco/Process.h>
#include <Poco/StreamCopier.h>

#include <map>
#include <string>
#include <vector>

namespace TQ {
namespace Test {

struct Ran {
    int status = -1;
    std::string out;
    std::string err;
};

inline Ran runProcess(const std::string& program, const std::vector<std::string>& args,
                      const std::map<std::string, std::string>& env = {}) {
    Poco::Pipe outPipe, errPipe;
    Poco::Process::Env environment(env.begin(), env.end());
    Poco::ProcessHandle handle =
        Poco::Process::launch(program, args, std::string(), nullptr, &outPipe, &errPipe, environment);
    Ran ran;
    Poco::PipeInputStream out(outPipe), err(errPipe);
    Poco::StreamCopier::copyToString(out, ran.out);
    Poco::StreamCopier::copyToString(err, ran.err);
    ran.status = handle.wait();
    return ran;
}

}  // namespace Test
}  // namespace TQ
