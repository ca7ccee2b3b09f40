#include "Operations.h"

#include "Catalogue.h"
#include "Json.h"

#include <simdjson.h>

#include <ctime>
#include <string>

namespace flarebox::examples {
namespace {

constexpr int firstSessionId = 70001;
constexpr std::string_view developer = "Example Game Studio";

std::string jsonOf(const simdjson::dom::object& object, std::string_view key) {
    simdjson::dom::element value;
    return object[key].get(value) ? "null" : simdjson::minify(value);
}

}  // namespace

Answer errorAnswer(int status, std::string_view reason) {
    return {status, JsonObject().add("error", reason).text()};
}

Answer Operations::answer(const ReceivedRequest& request, Operation::Name name, std::string_view baseURL,
                          const Media& media) {
    switch (name) {
        case Operation::Name::CreateSession:
            return createSession(request);
        case Operation::Name::ListAssets:
            return {200, assetsJson(limitOfQuery(request.query).value_or(1), baseURL, media)};
        case Operation::Name::AcceptEngagement:
            return {202, JsonObject().add("status", "accepted").text()};
        case Operation::Name::SaveCoupon:
            return {201, request.body};
    }
    return errorAnswer(500, "operation without answer");
}

Answer Operations::createSession(const ReceivedRequest& request) {
    simdjson::dom::parser parser;
    simdjson::dom::object player;
    if (parser.parse(request.body).get(player)) return errorAnswer(400, "body is not a JSON object");

    int id = firstSessionId + sessions_++;
    std::string_view game = request.header("Game-UID").value_or("");
    std::string_view version = request.header("Game-Version").value_or("");
    return {201, JsonObject()
                     .add("id", id)
                     .add("uid", uidOf("session " + std::to_string(id)))
                     .add("developer_uid", uidOf(developer))
                     .add("game_uid", game)
                     .add("game", numberOf(game))
                     .add("version", numberOf(version))
                     .add("start", std::int64_t{std::time(nullptr)})
                     .addNull("end")
                     .addJson("first_name", jsonOf(player, "first_name"))
                     .addJson("last_name", jsonOf(player, "last_name"))
                     .addJson("age", jsonOf(player, "age"))
                     .addJson("sex", jsonOf(player, "sex"))
                     .addJson("state", jsonOf(player, "state"))
                     .addJson("city", jsonOf(player, "city"))
                     .addJson("country", jsonOf(player, "country"))
                     .addJson("ip_addr", jsonOf(player, "ip_addr"))
                     .addJson("device_id", jsonOf(player, "device_id"))
                     .text()};
}

}  // namespace flarebox::examples
