#pragma once

/// @file
/// Everything that a host game needs of the kit. A host adapter comes on top: <Host/SDL/SDLHost.h> for games on SDL2,
/// <Host/Headless/HeadlessHost.h> for tests and tools.

#include <Flarebox/C/flarebox_version.h>
#include <Flarebox/Core/CompanionApp.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/Logging.h>
#include <Flarebox/Core/Theme.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Flarebox/Models/FXUserSession.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Flarebox/Views/FlareboxViewDelegate.h>
