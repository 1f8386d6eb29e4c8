#include "TQ/Utility/Data/SqlScript.h"

#include <Poco/Data/DataException.h>
#include <Poco/Exception.h>
#include <Poco/String.h>

namespace TQ {
namespace Utility {
namespace Data {

namespace {

void finishStatement(std::string& statement, std::vector<std::string>& out) {
    Poco::trimInPlace(statement);
    if (!statement.empty()) out.push_back(std::move(statement));
    statement.clear();
}

}  // namespace

std::vector<std::string> SqlScript::split(const std::string& script) {
    std::vector<std::string> statements;
    std::string current;
    const std::size_t n = script.size();
    std::size_t i = 0;
    while (i < n) {
        char c = script[i];
        if (c == ';') {
            finishStatement(current, statements);
            ++i;
        } else if (c == '-' && i + 1 < n && script[i + 1] == '-') {
            std::size_t end = script.find('\n', i);
            i = end == std::string::npos ? n : end;
            current += ' ';
        } else if (c == '/' && i + 1 < n && script[i + 1] == '*') {
            std::size_t end = script.find("*/", i + 2);
            if (end == std::string::npos) throw Poco::SyntaxException("SQL script: unterminated comment");
            i = end + 2;
            current += ' ';
        } else if (c == '\'' || c == '"' || c == '`' || c == '[') {
            // Quoted text is copied verbatim; a doubled closing quote is an escaped quote.
            char close = c == '[' ? ']' : c;
            std::size_t j = i + 1;
            for (;;) {
                j = script.find(close, j);
                if (j == std::string::npos)
                    throw Poco::SyntaxException("SQL script: unterminated quoted text");
                if (close != ']' && j + 1 < n && script[j + 1] == close) {
                    j += 2;
                    continue;
                }
                break;
            }
            current.append(script, i, j + 1 - i);
            i = j + 1;
        } else {
            std::size_t end = script.find_first_of(";-/'\"`[", i + 1);
            if (end == std::string::npos) end = n;
            current.append(script, i, end - i);
            i = end;
        }
    }
    finishStatement(current, statements);
    return statements;
}

std::size_t SqlScript::run(Poco::Data::Session& session, const std::string& script) {
    std::vector<std::string> statements = split(script);
    session.begin();
    std::size_t number = 0;
    try {
        for (const std::string& statement : statements) {
            ++number;
            session << statement, Poco::Data::Keywords::now;
        }
        session.commit();
    } catch (Poco::Exception& error) {
        session.rollback();
        throw Poco::Data::DataException("SQL script statement " + std::to_string(number) +
                                        " failed: " + error.displayText());
    }
    return statements.size();
}

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
