#include "Script.h"

#include <algorithm>

namespace flarebox::hostgame {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Reads one line; the members hold what was found.
class LineReader {
public:
    explicit LineReader(std::string_view line) : line_(line) {}

    /// False when the line cannot be read.
    bool read() {
        while (skipBlanks()) {
            words.emplace_back();
            if (!(line_[place_] == '"' ? readQuoted() : readPlain())) return false;
        }
        return true;
    }

    std::vector<std::string> words;
    std::string reason;
    /// Where the comment starts, or the line ends.
    std::size_t end() const { return place_; }

private:
    bool skipBlanks() {
        while (place_ < line_.size() && blanks.find(line_[place_]) != blanks.npos) ++place_;
        return place_ < line_.size() && line_[place_] != '#';
    }

    bool readPlain() {
        while (place_ < line_.size() && line_[place_] != '#' && blanks.find(line_[place_]) == blanks.npos) {
            if (line_[place_] == '"') return fail("a quote in the middle of a word");
            words.back() += line_[place_++];
        }
        return true;
    }

    bool readQuoted() {
        for (++place_; place_ < line_.size(); ++place_) {
            char character = line_[place_];
            if (character == '"') {
                ++place_;
                const bool isEnd =
                    place_ == line_.size() || line_[place_] == '#' || blanks.find(line_[place_]) != blanks.npos;
                return isEnd || fail("something follows the closing quote at once");
            }
            if (character == '\\') {
                if (++place_ == line_.size()) break;
                character = line_[place_];
                if (character == 'n')
                    character = '\n';
                else if (character != '"' && character != '\\')
                    return fail("only \\\", \\\\ and \\n are known within quotes");
            }
            words.back() += character;
        }
        return fail("the closing quote is missing");
    }

    bool fail(std::string_view why) {
        reason = why;
        return false;
    }

    std::string_view line_;
    std::size_t place_ = 0;
};

}  // namespace

std::variant<Script, ScriptError> parseScript(std::string name, std::string_view text) {
    Script script{std::move(name), {}};
    int number = 0;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, length);
        text.remove_prefix(std::min(length + 1, text.size()));
        ++number;
        LineReader reader(line);
        if (!reader.read()) return ScriptError{number, std::string(trimmed(line)), reader.reason};
        if (reader.words.empty()) continue;
        script.commands.push_back(
            {number, std::string(trimmed(line.substr(0, reader.end()))), std::move(reader.words)});
    }
    return script;
}

}  // namespace flarebox::hostgame
