// Routing of the window's events to whatever screen or overlay should receive them.
#pragma once

#include "app/app.h"

// Drains the window's event queue once per frame. May close or rebuild the window.
void PollEvents(AppWindow& app);
