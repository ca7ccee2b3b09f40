#pragma once

#include "Gestures.h"

#include <Examples/Service/Service.h>

#include <span>
#include <string>

namespace flarebox::hostgame {

/// Makes the service answer as a script's words say: `normal`, or `PATH status N | slow SECONDS | cut | hang | answer
/// FILE | normal`. An empty reason stands for words of the wrong form. Files are relative to the script's folder;
/// "{service}" in them is the service's own address.
Failure changeService(examples::Service& service, std::span<const std::string> words, const std::string& folder);

}  // namespace flarebox::hostgame
