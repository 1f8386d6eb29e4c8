// tq-bacnet run as a process: each row is a command line and what a user must see.
#include "RunProcess.h"

#include <Poco/File.h>
#include <Poco/TemporaryFile.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

using TQ::Test::Ran;

class ToolTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dbFile = new Poco::TemporaryFile();
        Poco::File(dbFile->path()).createDirectories();
        dbPath = dbFile->path() + "/tq.db";
    }
    static void TearDownTestSuite() {
        delete dbFile;
        dbFile = nullptr;
    }
    static Ran tool(std::vector<std::string> args) {
        return TQ::Test::runProcess(TQ_BACNET_TOOL, args, {{"TQ_BACNET_DB", dbPath}});
    }
    static Poco::TemporaryFile* dbFile;
    static std::string dbPath;
};
Poco::TemporaryFile* ToolTest::dbFile = nullptr;
std::string ToolTest::dbPath;

struct Case {
    std::vector<std::string> args;
    int status;
    std::string out;  // exact standard output
    std::string err;  // a text standard error must contain ("" : must be empty)
};

void expectCase(const Case& c, const Ran& ran) {
    std::string line;
    for (const std::string& arg : c.args) line += arg + " ";
    SCOPED_TRACE(line);
    EXPECT_EQ(c.status, ran.status) << ran.err;
    EXPECT_EQ(c.out, ran.out);
    if (c.err.empty()) {
        EXPECT_EQ("", ran.err);
    } else {
        EXPECT_NE(std::string::npos, ran.err.find(c.err)) << ran.err;
        // One clear line (and a hint for bad usage), nothing partial on standard output.
        EXPECT_LE(std::count(ran.err.begin(), ran.err.end(), '\n'), 2);
    }
}

TEST_F(ToolTest, TextAndEncodeBothWays) {
    const std::vector<Case> cases = {
        {{"text", "--object", "analog-input", "--property", "present-value", "4441A80000"}, 0, "21\n", ""},
        {{"text", "--object", "0", "--property", "85", "44", "41", "a8", "00", "00"}, 0, "21\n", ""},
        {{"text", "--names", "--object", "analog-input", "--property", "event-state", "9100"}, 0, "normal\n", ""},
        {{"text", "--object", "device", "--property", "object-list", "--index", "0", "2103"}, 0, "3\n", ""},
        {{"encode", "--object", "analog-value", "--property", "present-value", "21.5"}, 0, "4441AC0000\n", ""},
        {{"encode", "--object", "binary-value", "--property", "out-of-service", "true"}, 0, "11\n", ""},
        {{"json", "--object", "analog-value", "--property", "present-value", "21.5"}, 0, "4441AC0000\n", ""},
        {{"json", "--object", "analog-value", "--property", "priority-array", "--index", "8", "{\"real\":21.5}"}, 0, "4441AC0000\n", ""},
        {{"render", "--alt", "json", "--object", "analog-value", "--property", "priority-array", "--index", "8", "00"}, 0,
         "{\"null\":\"NULL\"}\n", ""},
    };
    for (const Case& c : cases) expectCase(c, tool(c.args));
}

TEST_F(ToolTest, RenderShowsValuesAsTheWebServicesDo) {
    const std::string ns = " xmlns=\"http://bacnet.org/CSML/1.2\"";
    const std::string pv = "--object=analog-value --property=present-value 4441AC0000";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"--alt=json " + pv, "{\"$value\":21.5}\n"},
        {"--alt=plain " + pv, "21.5\n"},
        {pv, "<?xml version=\"1.0\"?><Real name=\"present-value\" value=\"21.5\"" + ns + "/>\n"},
        {"--alt=json --names --object=analog-input --property=event-state 9102", "{\"$value\":\"offnormal\"}\n"},
        {"--alt=json --object=analog-input --property=event-state 9102", "{\"$value\":\"2\"}\n"},
        {"--alt=json --object=device --property=object-list --index=0 2103", "{\"$value\":3}\n"},
        {"--alt=json --object=device --property=object-list c400000001c402000005", "{\"1\":\"0,1\",\"2\":\"8,5\"}\n"},
        {"--alt=json --object=analog-input --property=status-flags 820440", "{\"$value\":\"false,true,false,false\"}\n"},
        {"--alt=json --metadata=cat-types " + pv, "{\"$base\":\"Real\",\"$value\":21.5}\n"},
        {"--object=trend-log --property=start-time a47b0b1701b40c1e0000",
         "<?xml version=\"1.0\"?><Sequence name=\"start-time\"" + ns +
             "><Date name=\"date\" value=\"2023-11-23 1\"/><Time name=\"time\" value=\"12.30.00.00\"/></Sequence>\n"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"render"};
        std::istringstream words(c.first);
        for (std::string word; words >> word;) args.push_back(word);
        expectCase({args, 0, c.second, ""}, tool(args));
    }
}

TEST_F(ToolTest, CatalogueCommands) {
    const std::vector<Case> cases = {
        {{"enum", "BACnetEventState", "--alt", "json"}, 0,
         "{\"normal\":0,\"fault\":1,\"offnormal\":2,\"high-limit\":3,\"low-limit\":4,\"life-safety-alarm\":5}\n", ""},
        {{"enum", "BACnetStatusFlags", "--alt", "json"}, 0,
         "{\"in-alarm\":0,\"fault\":1,\"overridden\":2,\"out-of-service\":3}\n", ""},
        {{"type", "1026", "--alt", "json"}, 0, "{\"date\":{},\"time\":{}}\n", ""},
        {{"enum", "REAL"}, 1, "", "is no enumeration"},
        {{"type", "BACnetNothing"}, 1, "", "no data type"},
        {{"types", "--alt", "plain"}, 1, "", "plain text shows single primitive values only"},
        {{"properties", "bogus-object"}, 1, "", "unknown object type"},
    };
    for (const Case& c : cases) expectCase(c, tool(c.args));
    const Ran types = tool({"types", "--alt", "json"});
    EXPECT_NE(std::string::npos, types.out.find("\"0-BACnetDateTime\":1026")) << types.out.substr(0, 200);
    const Ran properties = tool({"properties", "analog-value", "--alt", "json"});
    EXPECT_NE(std::string::npos, properties.out.find("\"present-value\":{\"datatype\":\"REAL\",\"structure\":\"single\""));
    EXPECT_NE(std::string::npos, properties.out.find("\"priority-array\":{\"datatype\":\"BACnetPriorityArray\""));
}

TEST_F(ToolTest, BadInputIsOneLineAndStatusOne) {
    const std::vector<Case> cases = {
        {{"text", "--object", "analog-input", "--property", "present-value", "444"}, 1, "", "not hexadecimal"},
        {{"text", "--object", "analog-input", "--property", "present-value", "zz"}, 1, "", "not hexadecimal"},
        {{"text", "--object", "analog-input", "--property", "present-value", "4441A8"}, 1, "", "do not decode"},
        {{"text", "--object", "analog-input", "--property", "present-value", "4441A8000000"}, 1, "", "1 byte left over"},
        {{"text", "--object", "analog-inptu", "--property", "present-value", "00"}, 1, "", "unknown object type"},
        {{"text", "--object", "analog-input", "--property", "present-valeu", "00"}, 1, "", "unknown property"},
        {{"encode", "--object", "analog-value", "--property", "present-value", "warm"}, 1, "", "is no value of"},
        {{"json", "--object", "analog-value", "--property", "present-value", "{\"$value\":\"warm\"}"}, 1, "", "the JSON is no value of"},
        {{"json", "--object", "analog-value", "--property", "present-value", "--index", "2", "1"}, 1, "", "no elements to index"},
    };
    for (const Case& c : cases) expectCase(c, tool(c.args));
}

TEST_F(ToolTest, BadUsageIsStatusTwo) {
    const std::vector<Case> cases = {
        {{}, 2, "", "usage: tq-bacnet"},
        {{"frobnicate"}, 2, "", "unknown command"},
        {{"text", "--object", "analog-input", "4441A80000"}, 2, "", "--object and --property are required"},
        {{"text", "--colour", "red"}, 2, "", "unknown option --colour"},
        {{"text", "--object"}, 2, "", "--object needs TYPE"},
        {{"text", "--object", "0", "--property", "85", "--index", "-2", "00"}, 2, "", "--index must be"},
        {{"completion", "fish"}, 2, "", "only bash"},
        {{"render", "--alt", "html", "--object", "0", "--property", "85", "4441A80000"}, 2, "", "--alt is xml, json or plain"},
    };
    for (const Case& c : cases) expectCase(c, tool(c.args));
}

TEST_F(ToolTest, HelpAndCompletionComeFromTheCommandTable) {
    const Ran help = tool({"--help"});
    EXPECT_EQ(0, help.status);
    const Ran completion = tool({"completion", "bash"});
    EXPECT_EQ(0, completion.status);
    EXPECT_NE(std::string::npos, completion.out.find("complete -o default -F _tq_bacnet tq-bacnet"));
    for (const char* command : {"text", "encode", "db"}) {
        EXPECT_NE(std::string::npos, help.out.find(std::string("  ") + command + " ")) << command;
        const Ran own = tool({command, "--help"});
        EXPECT_EQ(0, own.status) << command;
        EXPECT_NE(std::string::npos, own.out.find("example:\n  tq-bacnet " + std::string(command))) << command;
        EXPECT_NE(std::string::npos, completion.out.find(std::string(command) + ") COMPREPLY")) << command;
    }
}

TEST_F(ToolTest, DbInitCreatesOnceAndIsUsable) {
    Poco::TemporaryFile dir;
    const std::string file = dir.path() + "/sub/site.db";
    const Ran first = tool({"db", "init", file});
    EXPECT_EQ(0, first.status) << first.err;
    EXPECT_EQ(file + ": created with the catalogue\n", first.out);
    EXPECT_EQ(file + ": already there\n", tool({"db", "init", file}).out);
    const Ran use = tool({"text", "--db", file, "--object", "0", "--property", "85", "4441A80000"});
    EXPECT_EQ("21\n", use.out);
}

}  // namespace
