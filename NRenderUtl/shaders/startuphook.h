// What the rendering start-up calls of the folders above this one.
#pragma once

/// Reads what has to be there before the first draw. Both steps of the start-up call it.
using StartUpHook = void (*)();

/// Stores the hook; returns true so that a static initialiser can call it.
bool registerStartUp(StartUpHook hook);

/// Calls the hook that is registered.
void runStartUpHook();
