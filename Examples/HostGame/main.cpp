#include "Game.h"
#include "Operations.h"
#include "Options.h"
#include "Recorder.h"
#include "Runner.h"
#include "Screen.h"
#include "Script.h"
#include "Surroundings.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>

using namespace flarebox::hostgame;

namespace {

constexpr int succeeded = 0, failed = 1, misused = 2;

int fail(int status, const std::string& reason) {
    std::fprintf(stderr, "flarebox-hostgame: %s\n", reason.c_str());
    return status;
}

/// Reports what is wrong itself.
std::optional<Script> readScript(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    if (!file) {
        fail(failed, "cannot read " + path);
        return std::nullopt;
    }
    auto parsed = parseScript(path, text.str());
    if (const auto* error = std::get_if<ScriptError>(&parsed)) {
        std::fprintf(stderr, "%s:%d: %s: %s\n", path.c_str(), error->line, error->text.c_str(), error->reason.c_str());
        return std::nullopt;
    }
    return std::get<Script>(std::move(parsed));
}

int play(Game& game, const Options& options, const Script* script) {
    if (std::string error = game.start(); !error.empty()) return fail(failed, error);
    const auto recorder = options.record ? Recorder::start(game, *options.record) : nullptr;
    if (options.record && !recorder) return fail(failed, "cannot write " + *options.record);
    Runner runner(game);
    if (script && !runner.run(*script)) return failed;
    if (options.screenshot) {
        if (!script) runner.showFirstList();
        if (!game.savePicture(*options.screenshot)) return fail(failed, "cannot write " + *options.screenshot);
        return succeeded;
    }
    if (!options.isHeadless) game.play();
    return succeeded;
}

int run(const Options& options) {
    std::optional<Script> script;
    if (options.script && !(script = readScript(*options.script))) return failed;
    // Files that are part of the program cannot be followed. One that the user names counts.
    if (options.watchesFiles) setenv("FLAREBOX_RESOURCES", KIT_RESOURCES, 0);
    Surroundings surroundings;
    if (std::string error = surroundings.prepare(options); !error.empty()) return fail(failed, error);
    std::string error;
    const auto screen = options.isHeadless ? makeHeadlessScreen(options) : makeWindowScreen(options, error);
    if (!screen) return fail(failed, error);
    Game game(options, surroundings, *screen);
    return play(game, options, script ? &*script : nullptr);
}

}  // namespace

int main(int count, char** arguments) {
    const ParsedOptions parsed = parseOptions({arguments + 1, static_cast<std::size_t>(count > 0 ? count - 1 : 0)});
    if (!parsed.error.empty()) return fail(misused, parsed.error);
    if (parsed.options.showsHelp) {
        std::fputs((helpText() + operationsHelp()).c_str(), stdout);
        return succeeded;
    }
    return run(parsed.options);
}
