#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace flarebox::hostgame {

struct Command {
    int line = 0;
    /// The line as written, without comment and surrounding blanks.
    std::string text;
    /// Quotes are taken off.
    std::vector<std::string> words;
};

struct Script {
    /// Names the script in messages.
    std::string name;
    std::vector<Command> commands;
};

struct ScriptError {
    int line = 0;
    std::string text, reason;
};

/// Splits a text into commands. Words are divided by blanks; one in double quotes may hold blanks, and \" \\ \n within
/// the quotes. `#` outside of quotes starts a comment.
std::variant<Script, ScriptError> parseScript(std::string name, std::string_view text);

}  // namespace flarebox::hostgame
