#pragma once
// Hands the frame's commands to the forms of the feature folders (Mainfrm's table).

void registerRoutes();
