// How the library notices that the process ends, for the rooms of this folder.
#pragma once

/// Called by entry points that run after main() began; only the first calls do something.
void hostWatchProcessEnd();
