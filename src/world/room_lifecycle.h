// Loading a room by its number with everything that lives in it, and tearing it down.
#pragma once

#include <SFML/Graphics.hpp>

// Reads the room's map and creates its objects; the view is fitted to the container in the two
// rooms that frame themselves (14 and 23).
void LoadNextTargetRoom(sf::RenderWindow& window, int roomNumber);
// Destroys the room's objects and releases the room.
void CleanupRoom();
// The number of the loaded room.
int CurrentRoomNumber();
